#include "tools/productserver/form_data.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::VariantWith;
using tools::FormError;
using tools::FormPart;
using tools::parseFormData;

using Parts = std::vector<FormPart>;

constexpr const char* kType = "multipart/form-data; boundary=XX";
constexpr const char* kNamed = "Content-Disposition: form-data; name=\"a\"\r\n";

FormPart field(const std::string& data) {
  return {.name = "a", .fileName = std::nullopt, .type = "text/plain", .data = data};
}

std::string form(const std::string& headers, const std::string& data) {
  return "--XX\r\n" + headers + "\r\n" + data + "\r\n--XX--\r\n";
}

auto isForm(const FormPart& part) {
  return VariantWith<Parts>(ElementsAre(part));
}

auto isRefusedBecause(const std::string& reason) {
  return VariantWith<FormError>(FormError{reason});
}

struct Case {
  const char* name;
  std::string body;
  std::string data;
};

class ValidForm : public testing::TestWithParam<Case> {};

TEST_P(ValidForm, DataIsReturnedVerbatim) {
  EXPECT_THAT(parseFormData(kType, GetParam().body), isForm(field(GetParam().data)));
}

INSTANTIATE_TEST_SUITE_P(
    Forms, ValidForm,
    testing::Values(
        Case{"AFirstDelimiterAtTheVeryBeginning", form(kNamed, "d"), "d"},
        Case{"ALineEndBeforeTheFirstDelimiter", "\r\n" + form(kNamed, "d"), "d"},
        Case{"APreambleOfText", "for people\r\n--XXX\r\n" + form(kNamed, "d"), "d"},
        Case{"PaddingBehindTheDelimiters", std::string("--XX \t\r\n") + kNamed + "\r\nd\r\n--XX-- \t\r\n",
             "d"},
        Case{"AnEpilogue", form(kNamed, "d") + "for people\r\n--XX\r\n", "d"},
        Case{"AClosingDelimiterWithoutLineEnd", std::string("--XX\r\n") + kNamed + "\r\nd\r\n--XX--", "d"},
        Case{"NoData", form(kNamed, ""), ""},
        Case{"AHeaderThatTheDelimiterFollowsAtOnce", std::string("--XX\r\n") + kNamed + "\r\n--XX--\r\n", ""},
        Case{"LineEndsInTheData", form(kNamed, "\r\n\r\nd\r\n\r\n"), "\r\n\r\nd\r\n\r\n"},
        Case{"EveryKindOfByte", form(kNamed, std::string("\0\xff\r\n\n\r-", 7)),
             std::string("\0\xff\r\n\n\r-", 7)},
        Case{"TheBoundaryWithinALine", form(kNamed, "x--XX\r\n--XX--x"), "x--XX\r\n--XX--x"},
        Case{"ALineThatGoesOnBehindTheBoundary", form(kNamed, "\r\n--XXX\r\n--XX-\r\nd"),
             "\r\n--XXX\r\n--XX-\r\nd"},
        Case{"TheBoundaryAfterABareNewline", form(kNamed, "d\n--XX\r\ne"), "d\n--XX\r\ne"},
        Case{"TheBeginningOfTheBoundary", form(kNamed, "d\r\n--X\r\n--\r\n"), "d\r\n--X\r\n--\r\n"}),
    [](const auto& test) { return test.param.name; });

struct HeaderCase {
  const char* name;
  std::string headers;
  FormPart part;
};

class ValidHeader : public testing::TestWithParam<HeaderCase> {};

TEST_P(ValidHeader, PartIsDescribed) {
  EXPECT_THAT(parseFormData(kType, form(GetParam().headers, "d")), isForm(GetParam().part));
}

FormPart file(const std::string& fileName, const std::string& type = "text/plain") {
  return {.name = "a", .fileName = fileName, .type = type, .data = "d"};
}

const std::string kFile = "Content-Disposition: form-data; name=\"a\"; filename=";

INSTANTIATE_TEST_SUITE_P(
    Headers, ValidHeader,
    testing::Values(
        HeaderCase{"AFileWithItsType", kFile + "\"f\"\r\nContent-Type: application/octet-stream\r\n",
                   file("f", "application/octet-stream")},
        HeaderCase{"NamesOfAnyCase",
                   "CONTENT-disposition: Form-Data; NAME=\"a\"; FileName=\"F\"\r\ncontent-TYPE: X/y\r\n",
                   file("F", "X/y")},
        HeaderCase{"ALineFoldedWithBlanks",
                   "Content-Disposition: form-data;\r\n  name=\"a\";\r\n\tfilename=\"f\"\r\n", file("f")},
        HeaderCase{"NoBlanksAtAll", "Content-Disposition:form-data;name=\"a\";filename=\"f\"\r\n", file("f")},
        HeaderCase{"BlanksAroundEverySign",
                   "Content-Disposition : form-data ; name = \"a\" ; filename = \"f\" ; \r\n", file("f")},
        HeaderCase{"AValueWithoutQuotes", "Content-Disposition: form-data; name=a; filename=f.x\r\n",
                   file("f.x")},
        HeaderCase{"ASemicolonWithinQuotes", kFile + "\"a; name=b\"\r\n", file("a; name=b")},
        HeaderCase{"AnEscapedQuote", kFile + R"("a\"b\\c")" + "\r\n", file(R"(a"b\c)")},
        HeaderCase{"ABackslashBetweenFolders", kFile + R"("C:\new")" + "\r\n", file(R"(C:\new)")},
        HeaderCase{"AnEmptyFileName", kFile + "\"\"\r\n", file("")},
        HeaderCase{"ANameOfOtherLetters", kFile + "\"\xc3\xa4\"\r\n", file("\xc3\xa4")},
        HeaderCase{"AHeaderThatSaysNothingHere", "X-Other: 1\r\n" + kFile + "\"f\"\r\n", file("f")}),
    [](const auto& test) { return test.param.name; });

TEST(FormData, PartsAreReturnedInOrder) {
  const std::string body = std::string("--XX\r\n") + kNamed + "\r\none\r\n--XX\r\n" + kFile +
                           "\"f\"\r\n\r\ntwo" + "\r\n--XX\r\n" + kNamed + "\r\n\r\n--XX--\r\n";
  FormPart second = file("f");
  second.data = "two";
  EXPECT_THAT(parseFormData(kType, body), VariantWith<Parts>(ElementsAre(field("one"), second, field(""))));
}

TEST(FormData, FormWithoutPartsIsValid) {
  EXPECT_THAT(parseFormData(kType, "--XX--\r\n"), VariantWith<Parts>(testing::IsEmpty()));
}

TEST(FormData, DelimiterNotAtStartOfLineIsPreamble) {
  EXPECT_THAT(parseFormData(kType, " " + form(kNamed, "d")), VariantWith<Parts>(testing::IsEmpty()));
}

TEST(FormData, BoundaryMayBeQuoted) {
  const std::string body = std::string("--a b:\r\n") + kNamed + "\r\nd\r\n--a b:--\r\n";
  EXPECT_THAT(parseFormData("Multipart/FORM-data; charset=x; Boundary=\"a b:\"", body), isForm(field("d")));
}

TEST(FormData, BoundaryMayStartWithHyphens) {
  const std::string boundary = "---------------------------14737809831466499882746641449";
  const std::string body = "\r\n--" + boundary + "\r\n" + kNamed + "\r\n--\r\n\r\n--" + boundary + "--\r\n";
  EXPECT_THAT(parseFormData("multipart/form-data; boundary=" + boundary, body), isForm(field("--\r\n")));
}

TEST(FormData, OtherContentTypeIsRefused) {
  const std::string body = form(kNamed, "d");
  EXPECT_THAT(parseFormData("", body), isRefusedBecause("the type is not multipart/form-data"));
  EXPECT_THAT(parseFormData("multipart/mixed; boundary=XX", body),
              isRefusedBecause("the type is not multipart/form-data"));
  EXPECT_THAT(parseFormData("multipart/form-data; boundary=\"XX", body),
              isRefusedBecause("the type is not multipart/form-data"));
  EXPECT_THAT(parseFormData("multipart/form-data", body),
              isRefusedBecause("the Content-Type has no boundary"));
}

TEST(FormData, BoundaryIsLimitedToSeventyCharacters) {
  const std::string reason = "the boundary is not 1 to 70 allowed characters";
  for (const std::size_t length : {70U, 71U}) {
    const std::string mark(length, 'x');
    const auto result = parseFormData("multipart/form-data; boundary=" + mark, "--" + mark + "--");
    EXPECT_EQ(std::holds_alternative<Parts>(result), length == 70) << length;
  }
  EXPECT_THAT(parseFormData("multipart/form-data; boundary=\"\"", "----"), isRefusedBecause(reason));
  EXPECT_THAT(parseFormData("multipart/form-data; boundary=\"X \"", "--X --"), isRefusedBecause(reason));
}

struct BadCase {
  const char* name;
  std::string body;
  std::string reason;
};

class InvalidForm : public testing::TestWithParam<BadCase> {};

TEST_P(InvalidForm, IsRefusedWithReason) {
  EXPECT_THAT(parseFormData(kType, GetParam().body), isRefusedBecause(GetParam().reason));
}

INSTANTIATE_TEST_SUITE_P(
    Forms, InvalidForm,
    testing::Values(
        BadCase{"NoBody", "", "the boundary does not occur"},
        BadCase{"AnotherBoundary", "--YY\r\n\r\n--YY--\r\n", "the boundary does not occur"},
        BadCase{"HyphensMissingBeforeTheBoundary", "XX\r\n\r\nXX--\r\n", "the boundary does not occur"},
        BadCase{"BareNewlines", "--XX\nContent-Disposition: form-data; name=a\n\nd\n--XX--\n",
                "the boundary does not occur"},
        BadCase{"NoClosingDelimiter", std::string("--XX\r\n") + kNamed + "\r\nd\r\n",
                "the closing delimiter is missing"},
        BadCase{"AClosingDelimiterCutShort", std::string("--XX\r\n") + kNamed + "\r\nd\r\n--XX-",
                "the closing delimiter is missing"},
        BadCase{"ANewPartThatNeverEnds", std::string("--XX\r\n") + kNamed + "\r\nd\r\n--XX\r\n",
                "the closing delimiter is missing"},
        BadCase{"APartWithoutHeader", "--XX\r\n\r\nd\r\n--XX--\r\n", "a part has an invalid header line"},
        BadCase{"AHeaderLineWithoutColon", form("Content-Disposition\r\n", "d"),
                "a part has an invalid header line"},
        BadCase{"AHeaderWithoutName", form(": form-data\r\n", "d"), "a part has an invalid header line"},
        BadCase{"DataWithoutBlankLine", std::string("--XX\r\n") + kNamed + "d\r\n--XX--\r\n",
                "a part has an invalid header line"},
        BadCase{"NoDisposition", form("Content-Type: text/plain\r\n", "d"),
                "a part has no Content-Disposition"},
        BadCase{"AnotherDisposition", form("Content-Disposition: attachment; name=\"a\"\r\n", "d"),
                "the Content-Disposition of a part is not form-data"},
        BadCase{"AQuoteThatNeverEnds", form("Content-Disposition: form-data; name=\"a\r\n", "d"),
                "the Content-Disposition of a part is not form-data"},
        BadCase{"TextBehindAQuote", form("Content-Disposition: form-data; name=\"a\"b\r\n", "d"),
                "the Content-Disposition of a part is not form-data"},
        BadCase{"AParameterGivenTwice", form("Content-Disposition: form-data; name=a; name=b\r\n", "d"),
                "the Content-Disposition of a part is not form-data"},
        BadCase{"AParameterWithoutValue", form("Content-Disposition: form-data; name=\r\n", "d"),
                "the Content-Disposition of a part is not form-data"},
        BadCase{"NoName", form("Content-Disposition: form-data; filename=\"f\"\r\n", "d"),
                "a part has no name"}),
    [](const auto& test) { return test.param.name; });

}  // namespace

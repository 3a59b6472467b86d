#include "usage/version_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace {

using testing::ElementsAre;

constexpr std::int64_t kGreatest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

TEST(SplitAtEach, TextWithoutSeparatorIsOnePiece) {
  EXPECT_THAT(splitAtEach("10", "."), ElementsAre("10"));
}

TEST(SplitAtEach, EmptyTextIsOneEmptyPiece) {
  EXPECT_THAT(splitAtEach("", "."), ElementsAre(""));
}

TEST(SplitAtEach, SeparatorsAtEndsYieldEmptyPieces) {
  EXPECT_THAT(splitAtEach(".1.", "."), ElementsAre("", "1", ""));
}

TEST(SplitAtEach, AdjacentSeparatorsYieldEmptyPieces) {
  EXPECT_THAT(splitAtEach("1..2", "."), ElementsAre("1", "", "2"));
}

TEST(SplitAtEach, EveryCharacterOfSetSeparates) {
  EXPECT_THAT(splitAtEach("Version 12 (bookworm)", " ()"), ElementsAre("Version", "12", "", "bookworm", ""));
}

TEST(SplitAtEach, EmptySetSeparatesNothing) {
  EXPECT_THAT(splitAtEach("1.2", ""), ElementsAre("1.2"));
}

struct Number {
  const char* name;
  std::string_view text;
  std::int64_t value;
};

void PrintTo(const Number& number, std::ostream* stream) {
  *stream << '"' << number.text << '"';
}

class IntegerValue : public testing::TestWithParam<Number> {};

TEST_P(IntegerValue, IsLeadingNumberOfText) {
  EXPECT_EQ(integerValue(GetParam().text), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    VersionText, IntegerValue,
    testing::Values(Number{"Digits", "10", 10}, Number{"Zero", "0", 0}, Number{"LeadingZeros", "007", 7},
                    Number{"Empty", "", 0}, Number{"NoDigits", "x", 0}, Number{"DigitsAfterText", "x3", 0},
                    Number{"TextAfterDigits", "3b", 3}, Number{"Decimal", "3.9", 3},
                    Number{"Minus", "-7", -7}, Number{"Plus", "+7", 7}, Number{"MinusAlone", "-", 0},
                    Number{"PlusAlone", "+", 0}, Number{"TwoSigns", "--7", 0}, Number{"MixedSigns", "+-7", 0},
                    Number{"BlankAfterSign", "- 7", 0}, Number{"LeadingWhiteSpace", " \t\r\n\v\f7", 7},
                    Number{"WhiteSpaceAlone", " \n", 0}, Number{"WhiteSpaceAndSign", "  -7 ", -7},
                    Number{"HexadecimalForm", "0x10", 0}, Number{"Exponent", "1e3", 1},
                    Number{"DigitsOfAnotherScript", "\u0663", 0},
                    Number{"Greatest", "9223372036854775807", kGreatest},
                    Number{"OneAboveGreatest", "9223372036854775808", kGreatest},
                    Number{"FarAboveGreatest", "99999999999999999999999999999999", kGreatest},
                    Number{"AboveGreatestBeforeText", "9999999999999999999999b", kGreatest},
                    Number{"OneAboveLeast", "-9223372036854775807", kLeast + 1},
                    Number{"Least", "-9223372036854775808", kLeast},
                    Number{"OneBelowLeast", "-9223372036854775809", kLeast},
                    Number{"FarBelowLeast", "-99999999999999999999999999999999", kLeast},
                    Number{"ByteZeroEndsIt", std::string_view("1\0002", 3), 1}),
    [](const auto& test) { return test.param.name; });

}  // namespace

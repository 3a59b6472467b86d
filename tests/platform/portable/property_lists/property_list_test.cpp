#include "platform/property_list.h"

#include <gtest/gtest.h>

#include "tests/platform/portable/property_lists/property_list_support.h"

namespace {

using namespace property_list_support;
using platform::propertyListMaxBytes;

TEST(PropertyList, AsReturnsNullForOtherTypes) {
  const PropertyList list(true);
  ASSERT_NE(list.as<bool>(), nullptr);
  EXPECT_TRUE(*list.as<bool>());
  EXPECT_EQ(list.as<std::int64_t>(), nullptr);
  EXPECT_EQ(list.as<std::string>(), nullptr);
}

TEST(PropertyList, SetReplacesTypeAndValue) {
  PropertyList list(PropertyList::Array{number(1)});
  list.set(std::string("text"));
  EXPECT_EQ(list, text("text"));
  EXPECT_EQ(list.as<PropertyList::Array>(), nullptr);
}

TEST(PropertyList, FindReturnsEntryOfKey) {
  const PropertyList list(PropertyList::Dictionary{{"Autorun", PropertyList(true)}, {"", text("empty key")}});
  ASSERT_NE(list.find("Autorun"), nullptr);
  EXPECT_EQ(*list.find("Autorun"), PropertyList(true));
  ASSERT_NE(list.find(""), nullptr);
  EXPECT_EQ(list.find("autorun"), nullptr);
  EXPECT_EQ(list.find("Auto"), nullptr);
}

TEST(PropertyListDictionary, SortsEntriesByKey) {
  using Dictionary = PropertyList::Dictionary;
  const Dictionary dictionary({{"b", number(1)}, {"", number(2)}, {"a", number(3)}}, Dictionary::Keep::First);
  EXPECT_EQ(dictionary, (Dictionary{{"", number(2)}, {"a", number(3)}, {"b", number(1)}}));
  EXPECT_EQ(dictionary.entries().front().key, "");
  EXPECT_EQ(dictionary.entries().back().key, "b");
}

TEST(PropertyListDictionary, KeepsFirstOrLastOfRepeatedKeys) {
  using Dictionary = PropertyList::Dictionary;
  const std::vector<PropertyList::Entry> sorted = {
      {"a", number(1)}, {"b", number(2)}, {"b", number(3)}, {"b", number(4)}};
  const std::vector<PropertyList::Entry> unsorted = {
      {"b", number(2)}, {"a", number(1)}, {"b", number(3)}, {"b", number(4)}};
  for (const auto& entries : {sorted, unsorted}) {
    EXPECT_EQ(Dictionary(entries, Dictionary::Keep::First), (Dictionary{{"a", number(1)}, {"b", number(2)}}));
    EXPECT_EQ(Dictionary(entries, Dictionary::Keep::Last), (Dictionary{{"a", number(1)}, {"b", number(4)}}));
  }
}

TEST(PropertyList, FindReturnsNullIfNotDictionary) {
  EXPECT_EQ(text("Autorun").find("Autorun"), nullptr);
  EXPECT_EQ(PropertyList(PropertyList::Array{text("Autorun")}).find("Autorun"), nullptr);
}

TEST(PropertyList, EqualityComparesTypeAndContent) {
  EXPECT_EQ(number(1), number(1));
  EXPECT_NE(number(1), PropertyList(1.0));
  EXPECT_NE(number(1), PropertyList(true));
  EXPECT_NE(PropertyList(PropertyList::Array{}), PropertyList(PropertyList::Dictionary{}));
}

TEST(ParsePropertyList, EmptyInputIsUnreadable) {
  EXPECT_FALSE(parse(""));
  EXPECT_FALSE(platform::parsePropertyList({}));
}

TEST(ParsePropertyList, WhiteSpaceAloneIsUnreadable) {
  EXPECT_FALSE(parse(" \t\r\n\n"));
  EXPECT_FALSE(parse("\xEF\xBB\xBF"));
  EXPECT_FALSE(parse("\xEF\xBB\xBF \n"));
  EXPECT_FALSE(parse("// nothing but a comment\n/* or two */"));
}

TEST(ParsePropertyList, WebPageIsUnreadable) {
  EXPECT_FALSE(parse("<html><head><title>404 Not Found</title></head><body>Not Found</body></html>"));
  EXPECT_FALSE(parse("<!DOCTYPE html>\n<html lang=\"en\"><body><p>Not Found</p></body></html>"));
  EXPECT_FALSE(parse("404 page not found\n"));
  EXPECT_FALSE(parse("{\"version\": \"1.2.3\"}"));
}

TEST(ParsePropertyList, RootNeedNotBeDictionary) {
  for (const char* list :
       {"<plist><array/></plist>", "<plist><string>a</string></plist>", "( a )", "a", "<00>"}) {
    const auto result = parse(list);
    ASSERT_TRUE(result) << list;
    EXPECT_EQ(result->as<PropertyList::Dictionary>(), nullptr) << list;
    EXPECT_EQ(result->find("a"), nullptr) << list;
  }
}

TEST(ParsePropertyList, DataResemblingXmlIsReadAsOldText) {
  EXPECT_EQ(parse(" <6162 63>"), dataOf("abc"));
  EXPECT_EQ(parse("<da>"), dataOf("\xDA"));
}

TEST(ParsePropertyList, ReadsListOfMaximumSize) {
  const std::string list = filled("<plist><true/></plist>", "\n", "");
  ASSERT_EQ(list.size(), propertyListMaxBytes);
  EXPECT_EQ(parse(list), PropertyList(true));
}

TEST(ParsePropertyList, ListBeyondMaximumSizeIsUnreadable) {
  EXPECT_FALSE(parse(filled("<plist><true/></plist>", "\n", "") + "\n"));
  EXPECT_FALSE(parse(filled("a", "\n", "") + "\n"));
}

TEST(ParsePropertyList, TextBeyondMaximumSizeInUtf8IsUnreadable) {
  // Each letter takes two bytes in UTF-16 and three in UTF-8.
  const std::string letters = bytes({0xFE, 0xFF}) + repeated(bytes({0, '"'}), 1) +
                              repeated(bytes({0x4E, 0x00}), propertyListMaxBytes / 3) + bytes({0, '"'});
  EXPECT_FALSE(parse(letters));
}

TEST(ParsePropertyList, Utf8IsReadVerbatim) {
  EXPECT_EQ(parse("\"\xC3\xA9\xF0\x9F\x98\x80\""), text("\xC3\xA9\xF0\x9F\x98\x80"));
}

TEST(ParsePropertyList, InvalidUtf8IsUnreadable) {
  EXPECT_FALSE(parse("<plist><string>\xFF</string></plist>"));
  EXPECT_FALSE(parse("<plist><string>\xC3</string></plist>"));
  EXPECT_FALSE(parse("\"\xC0\x80\""));          // overlong encoding
  EXPECT_FALSE(parse("\"\xED\xA0\x80\""));      // surrogate
  EXPECT_FALSE(parse("\"\xF4\x90\x80\x80\""));  // above U+10FFFF
  EXPECT_FALSE(parse("{ a = b; } // \xE9\n"));  // invalid in a comment
}

// Returns ASCII text as UTF-16 (`width` 2) or UTF-32 (`width` 4).
std::string widened(std::string_view ascii, std::size_t width, bool bigEndian) {
  std::string result;
  for (const char c : ascii) {
    std::string unit(width, '\0');
    unit[bigEndian ? width - 1 : 0] = c;
    result += unit;
  }
  return result;
}

struct WideForm {
  std::size_t width;
  bool bigEndian;
  std::string mark;
};

class WideText : public testing::TestWithParam<WideForm> {
 protected:
  static std::string wide(std::string_view ascii) {
    return widened(ascii, GetParam().width, GetParam().bigEndian);
  }
};

TEST_P(WideText, ReadsOldTextAfterByteOrderMark) {
  EXPECT_EQ(parse(GetParam().mark + wide("key = value;")),
            PropertyList(PropertyList::Dictionary{{"key", text("value")}}));
}

TEST_P(WideText, XmlDeclarationDoesNotOverrideByteOrderMark) {
  const std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist><true/></plist>";
  EXPECT_EQ(parse(GetParam().mark + wide(xml)), PropertyList(true));
  EXPECT_EQ(parse(GetParam().mark + wide(" \n") + wide(xml)), PropertyList(true));
}

TEST_P(WideText, ReadsXmlWithoutByteOrderMark) {
  EXPECT_EQ(parse(wide("<plist><true/></plist>")), PropertyList(true));
}

TEST_P(WideText, IncompleteLastUnitIsUnreadable) {
  EXPECT_FALSE(parse(GetParam().mark + wide("key = value;") + std::string(1, '\0')));
}

INSTANTIATE_TEST_SUITE_P(AllForms, WideText,
                         testing::Values(WideForm{2, false, bytes({0xFF, 0xFE})},
                                         WideForm{2, true, bytes({0xFE, 0xFF})},
                                         WideForm{4, false, bytes({0xFF, 0xFE, 0, 0})},
                                         WideForm{4, true, bytes({0, 0, 0xFE, 0xFF})}));

TEST(ParsePropertyList, Utf16SurrogatePairIsOneCharacter) {
  EXPECT_EQ(parse(bytes({0xFE, 0xFF, 0, '"', 0xD8, 0x3D, 0xDE, 0x00, 0, '"'})), text("\xF0\x9F\x98\x80"));
}

TEST(ParsePropertyList, UnpairedUtf16SurrogateIsUnreadable) {
  EXPECT_FALSE(parse(bytes({0xFE, 0xFF, 0, '"', 0xD8, 0x3D, 0, '"'})));
  EXPECT_FALSE(parse(bytes({0xFE, 0xFF, 0, '"', 0xDE, 0x00, 0, '"'})));
  EXPECT_FALSE(parse(bytes({0xFE, 0xFF, 0, '"', 0xDE, 0x00, 0xD8, 0x3D, 0, '"'})));
  EXPECT_FALSE(parse(bytes({0xFE, 0xFF, 0, 'a', 0xD8, 0x3D})));
}

TEST(ParsePropertyList, InvalidUtf32CodePointIsUnreadable) {
  EXPECT_FALSE(parse(bytes({0, 0, 0xFE, 0xFF, 0, 0, 0, '"', 0, 0, 0xD8, 0x3D, 0, 0, 0, '"'})));
  EXPECT_FALSE(parse(bytes({0, 0, 0xFE, 0xFF, 0, 0, 0, '"', 0, 0x11, 0, 0, 0, 0, 0, '"'})));
}

TEST(ParsePropertyList, XmlDeclarationSelectsEncoding) {
  EXPECT_EQ(parse("<?xml version='1.0' encoding='ISO-8859-1'?><plist><string>\xE9</string></plist>"),
            text("\xC3\xA9"));
  EXPECT_EQ(
      parse("\n<?xml version=\"1.0\" encoding = \"windows-1252\"?><plist><string>\x80</string></plist>"),
      text("\xE2\x82\xAC"));
  EXPECT_EQ(parse("<?xml version=\"1.0\" encoding=\"utf8\"?><plist><string>\xC3\xA9</string></plist>"),
            text("\xC3\xA9"));
}

TEST(ParsePropertyList, UnknownEncodingIsUnreadable) {
  EXPECT_FALSE(parse("<?xml version='1.0' encoding='no-such-encoding'?><plist><true/></plist>"));
}

TEST(ParsePropertyList, BytesInvalidInDeclaredEncodingAreUnreadable) {
  EXPECT_FALSE(parse("<?xml version='1.0' encoding='US-ASCII'?><plist><string>\xE9</string></plist>"));
}

}  // namespace

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/platform/portable/property_lists/property_list_support.h"

namespace {

using namespace property_list_support;
using platform::propertyListMaxDepth;
using platform::propertyListMaxObjects;

constexpr std::string_view header =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n";

std::optional<PropertyList> parseInPlist(std::string_view value) {
  return parse(std::string(header) + "<plist version=\"1.0\">\n" + std::string(value) + "\n</plist>\n");
}

TEST(XmlPropertyList, ReadsSettingsFile) {
  const auto list = parseInPlist(
      "<dict>\n"
      "\t<key>Active</key>\n\t<true/>\n"
      "\t<key>Autorun</key>\n\t<false/>\n"
      "\t<key>CFBundleVersion</key>\n\t<string>1.2.3</string>\n"
      "\t<key>Count</key>\n\t<integer>-42</integer>\n"
      "\t<key>Scale</key>\n\t<real>1.5</real>\n"
      "\t<key>Made</key>\n\t<date>2001-01-01T00:01:00Z</date>\n"
      "\t<key>Mark</key>\n\t<data>\n\tYWJj\n\t</data>\n"
      "\t<key>Names</key>\n\t<array>\n\t\t<string>a</string>\n\t\t<dict/>\n\t</array>\n"
      "</dict>");
  EXPECT_EQ(list, PropertyList(PropertyList::Dictionary{
                      {"Active", PropertyList(true)},
                      {"Autorun", PropertyList(false)},
                      {"CFBundleVersion", text("1.2.3")},
                      {"Count", number(-42)},
                      {"Scale", PropertyList(1.5)},
                      {"Made", PropertyList(PropertyList::Date{60})},
                      {"Mark", dataOf("abc")},
                      {"Names", listOf({text("a"), pairs({})})},
                  }));
}

TEST(XmlPropertyList, BooleansMayBeEmptyElementsOrTagPairs) {
  EXPECT_EQ(parseInPlist("<true></true>"), PropertyList(true));
  EXPECT_EQ(parseInPlist("<false> <!-- off --> </false>"), PropertyList(false));
  EXPECT_FALSE(parseInPlist("<true>yes</true>"));
  EXPECT_FALSE(parseInPlist("<true><false/></true>"));
}

TEST(XmlPropertyList, StringAndIntegerAreNotConvertedToBoolean) {
  const auto list = parseInPlist(
      "<dict><key>Autorun</key><string>true</string><key>Active</key><integer>1</integer></dict>");
  ASSERT_TRUE(list);
  EXPECT_EQ(list->find("Autorun")->as<bool>(), nullptr);
  EXPECT_EQ(list->find("Active")->as<bool>(), nullptr);
}

TEST(XmlPropertyList, PlistElementIsOptional) {
  EXPECT_EQ(parse("<true/>"), PropertyList(true));
  EXPECT_EQ(parse("<dict><key>a</key><string/></dict>"), single("a", text("")));
}

TEST(XmlPropertyList, ByteOrderMarkBlanksAndCommentsMayPrecedeValue) {
  EXPECT_EQ(parse("\xEF\xBB\xBF<plist><true/></plist>"), PropertyList(true));
  EXPECT_EQ(parse(" \r\n\t<?xml version=\"1.0\"?><!-- a > b --><?php > ?><plist><true/></plist>"),
            PropertyList(true));
}

TEST(XmlPropertyList, CommentsAndInstructionsAreSkippedAnywhere) {
  EXPECT_EQ(
      parseInPlist("<!-- --><dict><?a?><key>k</key><!-- <x> --><integer><!-- 2 -->1</integer></dict><?b ?>"),
      single("k", number(1)));
  EXPECT_EQ(parseInPlist("<string>a<!-- b -->c</string>"), text("ac"));
  EXPECT_EQ(parseInPlist("<data>YW<!-- b -->Jj</data>"), dataOf("abc"));
}

TEST(XmlPropertyList, CommentWithDoubleHyphenIsSkipped) {
  EXPECT_EQ(parseInPlist("<array><!-- a -- b --><true/><!----- --></array>"), listOf({PropertyList(true)}));
}

TEST(XmlPropertyList, CommentMarksWithinCdataAreText) {
  EXPECT_EQ(parseInPlist("<string><![CDATA[<!-- a --><?b?>]]></string>"), text("<!-- a --><?b?>"));
}

TEST(XmlPropertyList, CommentWithinTagIsUnreadable) {
  EXPECT_FALSE(parse("<plist><true<!-- -->/></plist>"));
  EXPECT_FALSE(parse("<plist a='<!-- -->'><true/></plist>"));
}

TEST(XmlPropertyList, LongWhiteSpaceBetweenAndAfterElementsIsSkipped) {
  const std::string blanks(20'000, '\n');
  EXPECT_EQ(parse("<plist>" + blanks + "<true/>" + blanks + "</plist>" + blanks), PropertyList(true));
}

TEST(XmlPropertyList, EntitiesAndCharacterReferencesAreDecoded) {
  EXPECT_EQ(parseInPlist("<string>&lt;&gt;&amp;&quot;&apos;&#233;&#x1F600;</string>"),
            text("<>&\"'\xC3\xA9\xF0\x9F\x98\x80"));
  EXPECT_EQ(parseInPlist("<dict><key>a&amp;b</key><true/></dict>"), single("a&b", PropertyList(true)));
}

TEST(XmlPropertyList, InvalidReferenceIsUnreadable) {
  EXPECT_FALSE(parseInPlist("<string>&#0;</string>"));
  EXPECT_FALSE(parseInPlist("<string>&#xD800;</string>"));
  EXPECT_FALSE(parseInPlist("<string>&#x110000;</string>"));
  EXPECT_FALSE(parseInPlist("<string>&nbsp;</string>"));
  EXPECT_FALSE(parseInPlist("<string>a & b</string>"));
  EXPECT_FALSE(parseInPlist(std::string_view("<string>\0</string>", 18)));
}

TEST(XmlPropertyList, CdataIsReadVerbatim) {
  EXPECT_EQ(parseInPlist("<string>a<![CDATA[<b> &amp; ]] >]]>c</string>"), text("a<b> &amp; ]] >c"));
  EXPECT_EQ(parseInPlist("<string><![CDATA[]]></string>"), text(""));
  EXPECT_EQ(parseInPlist("<string><![CDATA[a]]]]></string>"), text("a]]"));
  EXPECT_FALSE(parseInPlist("<string><![CDATA[a</string>"));
}

TEST(XmlPropertyList, StringsKeepWhiteSpace) {
  EXPECT_EQ(parseInPlist("<string> a\n\tb </string>"), text(" a\n\tb "));
  EXPECT_EQ(parseInPlist("<string/>"), text(""));
  EXPECT_EQ(parseInPlist("<string></string>"), text(""));
}

TEST(XmlPropertyList, LongStringIsJoinedFromParserSlices) {
  // With twelve shifts, every kind of sequence (character, reference, line end) crosses a boundary of the
  // parser's slices.
  for (std::size_t shift = 0; shift < 12; ++shift) {
    const std::string start(shift, 'x');
    const std::string written = start + repeated("\xF0\x9F\x98\x80&lt;\r\n\xC3\xA9", 3000);
    const std::string meant = start + repeated("\xF0\x9F\x98\x80<\n\xC3\xA9", 3000);
    EXPECT_EQ(parseInPlist("<string>" + written + "</string>"), text(meant)) << shift;
  }
}

TEST(XmlPropertyList, LongCdataIsJoinedFromParserSlices) {
  for (std::size_t shift = 0; shift < 12; ++shift) {
    const std::string start(shift, 'x');
    const std::string written = start + repeated("\xF0\x9F\x98\x80&]]\r\n\xC3\xA9", 3000);
    const std::string meant = start + repeated("\xF0\x9F\x98\x80&]]\n\xC3\xA9", 3000);
    EXPECT_EQ(parseInPlist("<string><![CDATA[" + written + "]]></string>"), text(meant)) << shift;
  }
}

TEST(XmlPropertyList, IntegersAreDecimalOrHexadecimal) {
  constexpr auto lowest = std::numeric_limits<std::int64_t>::min(),
                 highest = std::numeric_limits<std::int64_t>::max();
  const std::pair<const char*, std::int64_t> written[] = {
      {"0", 0},
      {"-0", 0},
      {"+7", 7},
      {" 12", 12},
      {"\n- 12\t", -12},
      {"007", 7},
      {"0x1F", 31},
      {"-0Xff", -255},
      {"9223372036854775807", highest},
      {"-9223372036854775808", lowest},
      {"0x7fffffffffffffff", highest},
      {"-0x8000000000000000", lowest},
  };
  for (const auto& [text, value] : written) {
    EXPECT_EQ(parseInPlist("<integer>" + std::string(text) + "</integer>"), number(value)) << text;
  }
}

TEST(XmlPropertyList, InvalidIntegerIsUnreadable) {
  for (const char* text : {"", " ", "-", "+-1", "--1", "1.0", "1e3", "0x", "0xg", "x1", "12a", "1 2", "0x-1",
                           "9223372036854775808", "-9223372036854775809", "0xFFFFFFFFFFFFFFFF",
                           "100000000000000000000000000000"}) {
    EXPECT_FALSE(parseInPlist("<integer>" + std::string(text) + "</integer>")) << text;
  }
}

TEST(XmlPropertyList, RealsAreDecimalNumbers) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const std::pair<const char*, double> written[] = {
      {"1.5", 1.5},
      {"-1.5e3", -1500},
      {"+2", 2},
      {".5", 0.5},
      {"5.", 5},
      {" 1E-2 ", 0.01},
      {"-0", -0.0},
      {"4e-324", std::numeric_limits<double>::denorm_min()},
      {"inf", infinity},
      {"+Inf", infinity},
      {"-INF", -infinity},
      {"infinity", infinity},
      {"-Infinity", -infinity},
  };
  for (const auto& [text, value] : written) {
    EXPECT_EQ(parseInPlist("<real>" + std::string(text) + "</real>"), PropertyList(value)) << text;
  }
  for (const char* text : {"nan", "NaN"}) {
    const auto list = parseInPlist("<real>" + std::string(text) + "</real>");
    ASSERT_TRUE(list) << text;
    EXPECT_TRUE(std::isnan(*list->as<double>())) << text;
  }
}

TEST(XmlPropertyList, InvalidRealIsUnreadable) {
  for (const char* text : {"", "e5", "1,5", "1.5x", "1.5.5", "+-1", "-+1", "--1", "0x10", "nan(1)", "infinit",
                           "1e999", "1e-999", "1e", ".", "+"}) {
    EXPECT_FALSE(parseInPlist("<real>" + std::string(text) + "</real>")) << text;
  }
}

TEST(XmlPropertyList, DatesAreSecondsSince2001) {
  const std::pair<const char*, double> written[] = {
      {"2001-01-01T00:00:00Z", 0},
      {"2000-12-31T23:59:59Z", -1},
      {"1970-01-01T00:00:00Z", -978307200},
      {"2024-02-29T12:00:00Z", 730900800},
      {"\n2001-01-02T01:02:03Z ", 86400 + 3723},
      {"-0001-01-01T00:00:00Z", -63177062400},
      {"12001-01-01T00:00:00Z", 315569520000},
  };
  for (const auto& [text, seconds] : written) {
    EXPECT_EQ(parseInPlist("<date>" + std::string(text) + "</date>"),
              PropertyList(PropertyList::Date{seconds}))
        << text;
  }
}

TEST(XmlPropertyList, InvalidDateIsUnreadable) {
  for (const char* text :
       {"", "2001-01-01", "2001-01-01T00:00:00", "2001-01-01 00:00:00Z", "2001-01-01T00:00:00+01:00",
        "2001-13-01T00:00:00Z", "2001-00-01T00:00:00Z", "2001-02-29T00:00:00Z", "2001-01-01T24:00:00Z",
        "2001-01-01T00:60:00Z", "2001-01-01T00:00:61Z", "1-01-01T00:00:00Z", "2001-1-1T0:0:0Z",
        "99999-01-01T00:00:00Z", "2001-01-01T00:00:00Zx"}) {
    EXPECT_FALSE(parseInPlist("<date>" + std::string(text) + "</date>")) << text;
  }
}

TEST(XmlPropertyList, DataIsBase64WithWhiteSpace) {
  const std::pair<const char*, std::string> written[] = {
      {"", ""},
      {" \n\t", ""},
      {"YQ==", "a"},
      {"YWI=", "ab"},
      {"YWJj", "abc"},
      {"Y W\nJ\tj\r\nYQ=\n=", "abca"},
      {"+/+/", "\xFB\xFF\xBF"},
      {"<![CDATA[YWJj]]>", "abc"},
  };
  for (const auto& [text, meant] : written) {
    EXPECT_EQ(parseInPlist("<data>" + std::string(text) + "</data>"), dataOf(meant)) << text;
  }
  EXPECT_EQ(parseInPlist("<data/>"), dataOf(""));
}

TEST(XmlPropertyList, InvalidBase64IsUnreadable) {
  for (const char* text :
       {"Y", "YQ", "YQ=", "=", "Y===", "YQ==YQ==", "YQ=a", "Y-Jj", "Y*Jj", "YWJj====", "YWJj\xC3\xA9"}) {
    EXPECT_FALSE(parseInPlist("<data>" + std::string(text) + "</data>")) << text;
  }
}

TEST(XmlPropertyList, LastOfEqualKeysIsUsed) {
  EXPECT_EQ(parseInPlist("<dict><key>a</key><true/><key>a</key><false/></dict>"),
            single("a", PropertyList(false)));
}

TEST(XmlPropertyList, RepeatedKeyTakesLastValueOfAnyType) {
  EXPECT_EQ(
      parseInPlist("<dict><key>b</key><true/><key>a</key><integer>1</integer><key>c</key><string>x</string>"
                   "<key>a</key><dict><key>a</key><array/></dict><key>b</key><string>y</string></dict>"),
      pairs({{"a", single("a", listOf({}))}, {"b", text("y")}, {"c", text("x")}}));
}

// The limit does not depend on the position of the tag.
TEST(XmlPropertyList, TagWithAttributesBeyond4096BytesIsUnreadable) {
  constexpr std::size_t maxTagSize = 4096;
  const auto tag = [](std::size_t size) {
    const std::string start = "<array a=\"", end = "\"/>";
    return start + std::string(size - start.size() - end.size(), 'x') + end;
  };
  for (const std::size_t before : {0U, 100U, 4'000U, 8'000U, 12'500U, 16'300U, 40'000U}) {
    const std::string blanks(before, ' ');
    EXPECT_TRUE(parseInPlist(blanks + tag(maxTagSize))) << before;
    EXPECT_FALSE(parseInPlist(blanks + tag(maxTagSize + 1))) << before;
  }
}

TEST(XmlPropertyList, DictionaryAlternatesKeysAndValues) {
  EXPECT_EQ(parseInPlist("<dict><key/><true/></dict>"), single("", PropertyList(true)));
  EXPECT_FALSE(parseInPlist("<dict><key>a</key></dict>"));
  EXPECT_FALSE(parseInPlist("<dict><true/></dict>"));
  EXPECT_FALSE(parseInPlist("<dict><key>a</key><key>b</key><true/></dict>"));
  EXPECT_FALSE(parseInPlist("<dict><key>a</key><true/><true/></dict>"));
  EXPECT_FALSE(parseInPlist("<dict><string>a</string><true/></dict>"));
  EXPECT_FALSE(parseInPlist("<array><key>a</key></array>"));
  EXPECT_FALSE(parseInPlist("<key>a</key>"));
}

TEST(XmlPropertyList, TextBetweenElementsIsUnreadable) {
  EXPECT_FALSE(parseInPlist("x<true/>"));
  EXPECT_FALSE(parseInPlist("<true/>x"));
  EXPECT_FALSE(parseInPlist("<array>x</array>"));
  EXPECT_FALSE(parseInPlist("<array><true/><![CDATA[x]]></array>"));
  EXPECT_FALSE(parseInPlist("<dict><key>a</key>x<true/></dict>"));
}

TEST(XmlPropertyList, ElementsWithinTextAreUnreadable) {
  EXPECT_FALSE(parseInPlist("<string>a<true/></string>"));
  EXPECT_FALSE(parseInPlist("<integer>1<integer>2</integer></integer>"));
  EXPECT_FALSE(parseInPlist("<data><data/></data>"));
  EXPECT_FALSE(parseInPlist("<dict><key><string>a</string></key><true/></dict>"));
}

TEST(XmlPropertyList, UnknownElementsAreUnreadable) {
  EXPECT_FALSE(parseInPlist("<null/>"));
  EXPECT_FALSE(parseInPlist("<TRUE/>"));
  EXPECT_FALSE(parseInPlist("<p:true/>"));
  EXPECT_FALSE(parseInPlist("<array><b>x</b></array>"));
  EXPECT_FALSE(parseInPlist("<plist><true/></plist>"));
}

TEST(XmlPropertyList, ListHasExactlyOneValue) {
  EXPECT_FALSE(parse("<plist/>"));
  EXPECT_FALSE(parse("<plist></plist>"));
  EXPECT_FALSE(parseInPlist("<true/><true/>"));
  EXPECT_FALSE(parse("<true/><true/>"));
}

TEST(XmlPropertyList, OnlyCommentsAndBlanksMayFollowValue) {
  EXPECT_EQ(parse("<plist><true/></plist> \n<!-- a --><?b?>\n"), PropertyList(true));
  EXPECT_FALSE(parse("<plist><true/></plist>x"));
  EXPECT_FALSE(parse("<plist><true/></plist><plist><true/></plist>"));
  EXPECT_FALSE(parse("<plist><true/></plist></plist>"));
  EXPECT_FALSE(parse("<plist><true/></plist><!-- a "));
  EXPECT_FALSE(parse("<plist><true/></plist><!DOCTYPE plist>"));
  EXPECT_FALSE(parse("<plist><true/></plist><![CDATA[]]>"));
  EXPECT_FALSE(parse(std::string_view("<plist><true/></plist>\0", 23)));
}

TEST(XmlPropertyList, BrokenMarkupIsUnreadable) {
  EXPECT_FALSE(parse("<plist><true/>"));
  EXPECT_FALSE(parse("<plist><true></plist>"));
  EXPECT_FALSE(parse("<plist><array></dict></plist>"));
  EXPECT_FALSE(parse("<plist version=1.0><true/></plist>"));
  EXPECT_FALSE(parse("<plist a='1' a='2'><true/></plist>"));
  EXPECT_FALSE(parse("<plist><tr<!-- -->ue/></plist>"));
  EXPECT_FALSE(parse("<plist><true/></plist \">\">"));
}

TEST(XmlPropertyList, DocumentTypeIsSkipped) {
  EXPECT_EQ(parse("<!DOCTYPE plist [\n<!ELEMENT plist (dict)> <!-- ]> ' --> <?x ]> ?>\n"
                  "<!ENTITY e \"]>\"> <!ATTLIST plist v CDATA '<'>\n] ><plist><true/></plist>"),
            PropertyList(true));
  EXPECT_FALSE(parse("<!DOCTYPE plist [ <plist><true/></plist>"));
  EXPECT_FALSE(parse("<!DOCTYPE plist><!DOCTYPE plist><plist><true/></plist>"));
  EXPECT_FALSE(parse("<plist><!DOCTYPE plist><true/></plist>"));
}

TEST(XmlPropertyList, DeclaredEntitiesAreNeverExpanded) {
  EXPECT_FALSE(parse("<!DOCTYPE plist [<!ENTITY e \"x\">]><plist><string>&e;</string></plist>"));
  EXPECT_FALSE(parse(
      "<!DOCTYPE plist [<!ENTITY e SYSTEM \"file:///etc/passwd\">]><plist><string>&e;</string></plist>"));
  EXPECT_FALSE(
      parse("<!DOCTYPE plist [<!ENTITY a \"xxxxxxxxxx\"><!ENTITY b \"&a;&a;&a;&a;&a;\">]><plist><string>" +
            repeated("&b;", 100'000) + "</string></plist>"));
}

TEST(XmlPropertyList, NestingIsLimitedToMaxDepth) {
  const auto nested = [](std::size_t depth) {
    return repeated("<array>", depth) + repeated("</array>", depth);
  };
  EXPECT_TRUE(parseInPlist(nested(propertyListMaxDepth)));
  EXPECT_FALSE(parseInPlist(nested(propertyListMaxDepth + 1)));
  // Sibling containers add no depth.
  EXPECT_TRUE(parseInPlist("<array>" + repeated("<array/>", propertyListMaxDepth + 1) + "</array>"));
}

TEST(XmlPropertyList, ObjectsAreLimitedToMaxObjects) {
  const auto listOf = [](std::size_t count) {
    return "<array>" + repeated("<true/>", count - 1) + "</array>";
  };
  EXPECT_TRUE(parseInPlist(listOf(propertyListMaxObjects)));
  EXPECT_FALSE(parseInPlist(listOf(propertyListMaxObjects + 1)));
  // Keys count too, even equal ones.
  EXPECT_FALSE(
      parseInPlist("<dict>" + repeated("<key>a</key><true/>", propertyListMaxObjects / 2) + "</dict>"));
}

}  // namespace

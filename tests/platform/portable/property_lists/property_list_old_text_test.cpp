#include <gtest/gtest.h>

#include "tests/platform/portable/property_lists/property_list_support.h"

namespace {

using namespace property_list_support;
using platform::propertyListMaxDepth;
using platform::propertyListMaxObjects;

TEST(OldTextPropertyList, ReadsSettingsFile) {
  EXPECT_EQ(parse("{\n"
                  "    Autorun = YES;\n"
                  "    \"window title\" = \"Main \\\"window\\\"\";\n"
                  "    recent = ( /home/a.txt, \"b c\", );\n"
                  "    mark = <61 6263>;\n"
                  "    nested = { empty = (); };\n"
                  "}\n"),
            pairs({{"Autorun", text("YES")},
                   {"window title", text("Main \"window\"")},
                   {"recent", listOf({text("/home/a.txt"), text("b c")})},
                   {"mark", dataOf("abc")},
                   {"nested", pairs({{"empty", listOf({})}})}}));
}

TEST(OldTextPropertyList, ReadsStringsFile) {
  EXPECT_EQ(parse("/* The menu */\n\"Quit\" = \"Beenden\";\n// and\n\"Open \\U2026\" = \"\\U00d6ffnen\"; "
                  "plain=word;"),
            pairs({{"Quit", text("Beenden")},
                   {"Open \xE2\x80\xA6", text("\xC3\x96"
                                              "ffnen")},
                   {"plain", text("word")}}));
}

TEST(OldTextPropertyList, KeyWithoutValueIsItsOwnValue) {
  EXPECT_EQ(parse("\"Quit\"; Open;"), pairs({{"Quit", text("Quit")}, {"Open", text("Open")}}));
  EXPECT_EQ(parse("{ a; }"), pairs({{"a", text("a")}}));
}

TEST(OldTextPropertyList, BooleansAndNumbersAreStrings) {
  const auto list = parse("{ Autorun = true; Active = 1; }");
  ASSERT_TRUE(list);
  EXPECT_EQ(*list->find("Autorun"), text("true"));
  EXPECT_EQ(*list->find("Active"), text("1"));
}

TEST(OldTextPropertyList, UnquotedWordHasLettersDigitsAndSomePunctuation) {
  EXPECT_EQ(parse("aZ09_$/:.-"), text("aZ09_$/:.-"));
  EXPECT_EQ(parse("http://host/a"), text("http://host/a"));
  for (const char* list : {"a@b", "(a+b)", "{ a b = c; }", "{ a = b c; }", "\xC3\xA9", "{ a = #; }", "*"}) {
    EXPECT_FALSE(parse(list)) << list;
  }
}

TEST(OldTextPropertyList, QuotesMayBeDoubleOrSingle) {
  EXPECT_EQ(parse("\"a 'b'\""), text("a 'b'"));
  EXPECT_EQ(parse("'a \"b\"'"), text("a \"b\""));
  EXPECT_EQ(parse("''"), text(""));
  EXPECT_EQ(parse("\"\""), text(""));
  EXPECT_EQ(parse("\"a\nb\""), text("a\nb"));
  EXPECT_FALSE(parse("\"a"));
  EXPECT_FALSE(parse("\"a'"));
  EXPECT_FALSE(parse("\"a\\\""));
  EXPECT_FALSE(parse("\"a\\"));
}

TEST(OldTextPropertyList, EscapesAreDecoded) {
  EXPECT_EQ(parse(R"("\a\b\f\n\r\t\v")"), text("\a\b\f\n\r\t\v"));
  EXPECT_EQ(parse(R"("\"\\\'\q")"), text("\"\\'q"));
  EXPECT_EQ(parse("\"a\\\nb\""), text("a\nb"));
  EXPECT_EQ(parse("\"\\\xC3\xA9\""), text("\xC3\xA9"));
  EXPECT_EQ(parse(R"('\'')"), text("'"));
}

TEST(OldTextPropertyList, OctalEscapesUseNextStepEncoding) {
  EXPECT_EQ(parse(R"("\101\7\60x\1012")"), text("A\a0xA2"));
  EXPECT_EQ(parse(R"("\200\300\341\375")"), text("\xC2\xA0\xC2\xB9\xC3\x86\xC3\xBF"));
  EXPECT_EQ(parse(R"("\0")"), text(std::string(1, '\0')));
  EXPECT_FALSE(parse(R"("\376")"));
  EXPECT_FALSE(parse(R"("\400")"));
  EXPECT_FALSE(parse(R"("\777")"));
}

TEST(OldTextPropertyList, UnicodeEscapesHaveUpToFourDigits) {
  EXPECT_EQ(parse(R"("\U41\U00e9g\U20acA")"), text("A\xC3\xA9g\xE2\x82\xAC"
                                                   "A"));
  EXPECT_EQ(parse(R"("\U00411")"), text("A1"));
  EXPECT_EQ(parse(R"("\Ud83d\Ude00")"), text("\xF0\x9F\x98\x80"));
  EXPECT_FALSE(parse(R"("\U")"));
  EXPECT_FALSE(parse(R"("\Ug")"));
  EXPECT_FALSE(parse(R"("\U-1")"));
}

TEST(OldTextPropertyList, UnpairedSurrogateIsUnreadable) {
  for (const char* list : {R"("\Ud83d")", R"("\Ude00")", R"("\Ud83da")", R"("\Ud83d\n")", R"("\Ud83d\101")",
                           R"("\Ud83d\Ud83d\Ude00")", R"("\Ude00\Ud83d")"}) {
    EXPECT_FALSE(parse(list)) << list;
  }
}

TEST(OldTextPropertyList, DataConsistsOfHexDigitPairs) {
  EXPECT_EQ(parse("<>"), dataOf(""));
  EXPECT_EQ(parse("< 0fBD77 1c\n2735Ae >"), dataOf("\x0F\xBD\x77\x1C\x27\x35\xAE"));
  for (const char* list : {"<0>", "<0 0>", "<0g>", "<00", "<00 0", "<", "<0x00>", "<00, 00>"}) {
    EXPECT_FALSE(parse(list)) << list;
  }
}

TEST(OldTextPropertyList, ArrayMayEndWithComma) {
  EXPECT_EQ(parse("()"), listOf({}));
  EXPECT_EQ(parse("(a)"), listOf({text("a")}));
  EXPECT_EQ(parse("(a,)"), listOf({text("a")}));
  EXPECT_EQ(parse("( ( a ) , { } , <00> )"),
            listOf({listOf({text("a")}), pairs({}), dataOf(std::string_view("\0", 1))}));
  for (const char* list : {"(", "(a", "(a,", "(,)", "(a,,b)", "(a b)", "(a;)", "(a}", "a)", "(a))", ")"}) {
    EXPECT_FALSE(parse(list)) << list;
  }
}

TEST(OldTextPropertyList, PairsEndWithSemicolon) {
  EXPECT_EQ(parse("{}"), pairs({}));
  EXPECT_EQ(parse("{a=b;}"), pairs({{"a", text("b")}}));
  for (const char* list : {"{",     "{a",       "{a=",       "{a=b",   "{a=b;",   "{a=b}",   "{a}", "{=b;}",
                           "{a=;}", "{(a)=b;}", "{<00>=b;}", "{;}",    "{a=b;;}", "{a=b,}",  "}",   "{a=b;}}",
                           "a=b",   "a=b;}",    "a b",       "a=b; c", "= b;",    "(a) = b;"}) {
    EXPECT_FALSE(parse(list)) << list;
  }
}

TEST(OldTextPropertyList, TextAfterValueIsUnreadable) {
  EXPECT_TRUE(parse("{ a = b; } // end"));
  EXPECT_TRUE(parse("{ a = b; } /* end */\n"));
  EXPECT_FALSE(parse("{ a = b; } x"));
  EXPECT_FALSE(parse("{ a = b; } { a = b; }"));
  EXPECT_FALSE(parse("(a) (b)"));
  EXPECT_FALSE(parse("<00> 00"));
  EXPECT_FALSE(parse(std::string_view("{ a = b; }\0", 11)));
}

TEST(OldTextPropertyList, LastOfEqualKeysIsUsed) {
  EXPECT_EQ(parse("{ a = b; a = c; }"), pairs({{"a", text("c")}}));
  EXPECT_EQ(parse("a = b; 'a';"), pairs({{"a", text("a")}}));
}

TEST(OldTextPropertyList, CommentsAndBlanksMaySeparateTokens) {
  EXPECT_EQ(parse("// a\r{ /* } */ a /**/ = // =\n b\v;\f } \xE2\x80\xA8 // end"), pairs({{"a", text("b")}}));
  EXPECT_EQ(parse("\"/* a */ // b\""), text("/* a */ // b"));
  EXPECT_EQ(parse("{\xE2\x80\xA9}"), pairs({}));
  EXPECT_FALSE(parse("{ a = b; } /* never ends"));
  EXPECT_FALSE(parse("a /*/"));
  EXPECT_FALSE(parse("/* a * /"));
  EXPECT_FALSE(parse("{\xC2\xA0}"));
}

TEST(OldTextPropertyList, NestingIsLimitedToMaxDepth) {
  const auto nested = [](std::size_t depth) { return repeated("(", depth) + repeated(")", depth); };
  EXPECT_TRUE(parse(nested(propertyListMaxDepth)));
  EXPECT_FALSE(parse(nested(propertyListMaxDepth + 1)));
  EXPECT_TRUE(parse(repeated("{a=", propertyListMaxDepth) + "b" + repeated(";}", propertyListMaxDepth)));
  EXPECT_FALSE(
      parse(repeated("{a=", propertyListMaxDepth + 1) + "b" + repeated(";}", propertyListMaxDepth + 1)));
  // A strings file is a dictionary too and adds one level.
  EXPECT_TRUE(parse("a = " + nested(propertyListMaxDepth - 1) + ";"));
  EXPECT_FALSE(parse("a = " + nested(propertyListMaxDepth) + ";"));
}

TEST(OldTextPropertyList, ObjectsAreLimitedToMaxObjects) {
  EXPECT_TRUE(parse("(" + repeated("a,", propertyListMaxObjects - 1) + ")"));
  EXPECT_FALSE(parse("(" + repeated("a,", propertyListMaxObjects) + ")"));
  // Each pair counts as two objects, the enclosing dictionary as one.
  EXPECT_TRUE(parse(repeated("a=b;", propertyListMaxObjects / 2 - 1)));
  EXPECT_FALSE(parse(repeated("a=b;", propertyListMaxObjects / 2)));
  EXPECT_TRUE(parse(repeated("a;", propertyListMaxObjects / 2 - 1)));
  EXPECT_FALSE(parse(repeated("a;", propertyListMaxObjects / 2)));
}

}  // namespace

#include "usage/console_text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace std::string_literals;

std::string repeated(std::string_view text, int count) {
  std::string result;
  for (int i = 0; i < count; ++i) result += text;
  return result;
}

TEST(ConsoleText, PrintableTextIsVerbatim) {
  for (const std::string& text : {""s, "OK"s, "%s %n %@"s, "a\\n\\u000a\"'"s,
                                  "Gr\u00fc\u00dfe \u65e5\u672c\u8a9e \U0001f600"s, "\u00a0\u0301\ufeff"s})
    EXPECT_EQ(consoleText(text), text);
}

struct Escape {
  std::string character;
  std::string escape;
};

TEST(ConsoleText, ControlsAreEscaped) {
  for (const auto& [character, escape] :
       {Escape{"\0"s, "\\u0000"}, {"\a", "\\u0007"},     {"\t", "\\u0009"},     {"\n", "\\u000a"},
        {"\v", "\\u000b"},        {"\r", "\\u000d"},     {"\x1b", "\\u001b"},   {"\x1f", "\\u001f"},
        {"\x7f", "\\u007f"},      {"\u0080", "\\u0080"}, {"\u0085", "\\u0085"}, {"\u009b", "\\u009b"},
        {"\u009f", "\\u009f"},    {"\u061c", "\\u061c"}, {"\u200e", "\\u200e"}, {"\u200f", "\\u200f"},
        {"\u2028", "\\u2028"},    {"\u2029", "\\u2029"}, {"\u202a", "\\u202a"}, {"\u202e", "\\u202e"},
        {"\u2066", "\\u2066"},    {"\u2069", "\\u2069"}})
    EXPECT_EQ(consoleText("a" + character + "b"), "a" + escape + "b");
}

TEST(ConsoleText, NeighboursOfControlsAreVerbatim) {
  for (const char* text :
       {" ", "~", "\u00a0", "\u061b", "\u061d", "\u200d", "\u2010", "\u2027", "\u202f", "\u2065", "\u206a"})
    EXPECT_EQ(consoleText(text), text);
}

TEST(ConsoleText, EveryAsciiControlIsEscaped) {
  for (int byte = 0; byte < 0x80; ++byte) {
    const std::string text(1, static_cast<char>(byte));
    EXPECT_EQ(consoleText(text) == text, byte >= 0x20 && byte != 0x7f) << byte;
  }
}

TEST(ConsoleText, InvalidUtf8IsEscaped) {
  EXPECT_EQ(consoleText("a\xff\xc3\u00e4"), "a\\xff\\xc3\u00e4");
  EXPECT_EQ(consoleText("\xed\xa0\x80"), "\\xed\\xa0\\x80");
  EXPECT_EQ(consoleText("\xc0\x80"), "\\xc0\\x80");
  EXPECT_EQ(consoleText("a\xe2\x82"), "a\\xe2\\x82");
}

TEST(ConsoleText, TextOfThousandCharactersIsComplete) {
  for (const char* character : {"x", "\u00e4", "\u65e5", "\U0001f600"}) {
    const std::string text = repeated(character, 1000);
    EXPECT_EQ(consoleText(text), text) << character;
  }
}

TEST(ConsoleText, LongerTextEndsWithEllipsisBetweenCharacters) {
  for (const char* character : {"x", "\u00e4", "\u65e5", "\U0001f600"}) {
    for (const int count : {1001, 1002, 100'000})
      EXPECT_EQ(consoleText(repeated(character, count)), repeated(character, 999) + "\u2026") << character;
  }
}

TEST(ConsoleText, EscapesCountAsPrintedAndAreNeverSplit) {
  const std::string escapes = repeated("\\u000a", 166);  // 996 characters
  EXPECT_EQ(consoleText(repeated("\n", 166)), escapes);
  EXPECT_EQ(consoleText(repeated("\n", 166) + "abcd"), escapes + "abcd");
  EXPECT_EQ(consoleText(repeated("\n", 166) + "abcde"), escapes + "abc\u2026");
  EXPECT_EQ(consoleText(repeated("\n", 167)), escapes + "\u2026");
  EXPECT_EQ(consoleText(repeated("\n", 1'000'000)), escapes + "\u2026");
}

}  // namespace

#include "platform/text_prefix.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using platform::textPrefix;

constexpr const char* family =
    "\U0001F468\u200D\U0001F469\u200D\U0001F467";  // one character of five code points
constexpr const char* accented = "e\u0301";

std::string operator*(const std::string& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

TEST(TextPrefix, CountsGraphemeClusters) {
  struct Row {
    std::string text;
    std::size_t characters;
    std::string prefix;
  };
  const std::string threeFamilies = std::string(family) * 3;
  for (const Row& row : {Row{"", 3, ""}, Row{"abc", 0, ""}, Row{"abc", 2, "ab"}, Row{"abc", 3, "abc"},
                         Row{"abc", 4, "abc"}, Row{std::string(accented) * 3, 2, std::string(accented) * 2},
                         Row{threeFamilies, 2, std::string(family) * 2}, Row{"a\r\nb", 2, "a\r\n"},
                         Row{"\u00e4\u20ac\U0001F600x", 3, "\u00e4\u20ac\U0001F600"}})
    EXPECT_EQ(textPrefix(row.text, row.characters, 100), row.prefix) << row.text;
}

TEST(TextPrefix, CodePointLimitKeepsWholeGraphemeClusters) {
  struct Row {
    std::string text;
    std::size_t codePoints;
    std::string prefix;
  };
  const std::string twoFamilies = std::string(family) * 2;
  for (const Row& row :
       {Row{"abc", 3, "abc"}, Row{"abcd", 3, "ab"}, Row{twoFamilies, 10, twoFamilies},
        Row{twoFamilies, 9, family}, Row{twoFamilies, 6, family}, Row{"a" + twoFamilies, 6, "a"},
        Row{"\U0001F600\U0001F601", 2, "\U0001F600\U0001F601"}})
    EXPECT_EQ(textPrefix(row.text, 100, row.codePoints), row.prefix) << row.text << ' ' << row.codePoints;
}

TEST(TextPrefix, FirstClusterBeyondLimitIsTruncated) {
  EXPECT_EQ(textPrefix("e" + std::string("\u0301") * 450'000, 5, 7), "e" + std::string("\u0301") * 6);
  EXPECT_EQ(textPrefix(family, 5, 3), "\U0001F468\u200D\U0001F469");
}

TEST(TextPrefix, InvalidUtf8BecomesReplacementCharacters) {
  EXPECT_EQ(textPrefix("a\xff"
                       "b",
                       5, 100),
            "a\uFFFDb");
  EXPECT_EQ(textPrefix(std::string("\x80") * 100'000, 2, 3), std::string("\uFFFD") * 2);
}

}  // namespace

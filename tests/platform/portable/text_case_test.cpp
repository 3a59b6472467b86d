#include "platform/text_case.h"

#include <gtest/gtest.h>

#include <string_view>

namespace {

using platform::equalIgnoringCase;
using namespace std::string_view_literals;

TEST(TextCase, AsciiLettersAreEqualInBothCases) {
  EXPECT_TRUE(equalIgnoringCase("", ""));
  EXPECT_TRUE(equalIgnoringCase("Dark", "dARK"));
  EXPECT_TRUE(equalIgnoringCase("az-AZ_09", "AZ-az_09"));
}

TEST(TextCase, DifferentTextsAreUnequal) {
  EXPECT_FALSE(equalIgnoringCase("dark", "darke"));
  EXPECT_FALSE(equalIgnoringCase("dark", "dar"));
  EXPECT_FALSE(equalIgnoringCase("dark", "lark"));
  EXPECT_FALSE(equalIgnoringCase("a\0b"sv, "a\0c"sv));
}

// The characters 32 code points apart that are no letters, and letters beyond ASCII.
TEST(TextCase, OtherCharactersHaveNoCase) {
  EXPECT_FALSE(equalIgnoringCase("@", "`"));
  EXPECT_FALSE(equalIgnoringCase("[", "{"));
  EXPECT_FALSE(equalIgnoringCase("\xc4", "\xe4"));
  EXPECT_FALSE(equalIgnoringCase("\u00c4", "\u00e4"));
}

}  // namespace

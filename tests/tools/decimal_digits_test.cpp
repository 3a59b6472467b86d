#include "tools/tvldump/decimal_digits.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>

namespace {

std::string decimal(std::uint64_t number) {
  std::array<char, tools::decimalSpace> space{};
  const char* const end = tools::putDecimal(space.data(), number);
  return {space.data(), static_cast<std::size_t>(end - space.data())};
}

TEST(DecimalDigits, NumbersAroundPowersOfTenMatchToString) {
  for (std::uint64_t power = 1;; power *= 10) {
    for (const std::uint64_t number : {power - 1, power, power + 1, power * 7 / 3})
      EXPECT_EQ(decimal(number), std::to_string(number));
    if (power > std::numeric_limits<std::uint64_t>::max() / 10) break;
  }
}

TEST(DecimalDigits, LargestNumberHasTwentyDigits) {
  EXPECT_EQ(decimal(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
}

// Each half of an eight-digit group takes each value, with and without zeros around it.
TEST(DecimalDigits, EveryFourDigitsMatchToString) {
  for (std::uint64_t four = 0; four < 10'000; ++four) {
    for (const std::uint64_t number :
         {four, four * 10'000, four * 10'001, 100'000'000 + four, four * 1'000'000'000'000})
      ASSERT_EQ(decimal(number), std::to_string(number));
  }
}

TEST(DecimalDigits, FourDigitsKeepLeadingZeros) {
  for (std::uint32_t number = 0; number < 10'000; ++number) {
    std::array<char, 8> space{};
    ASSERT_EQ(tools::putFourDigits(space.data(), number), space.data() + 4);
    ASSERT_EQ(std::string(space.data(), 4), std::to_string(10'000 + number).substr(1));
  }
}

TEST(DecimalDigits, MiddleGroupsKeepLeadingZeros) {
  EXPECT_EQ(decimal(10'000'000'000'000'001), "10000000000000001");
  EXPECT_EQ(decimal(1'000'000'050'000'000), "1000000050000000");
}

}  // namespace

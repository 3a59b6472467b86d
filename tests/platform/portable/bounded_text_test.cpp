#include "platform/portable/bounded_text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using platform::BoundedText;

TEST(BoundedText, PiecesUpToLimitAreAppended) {
  BoundedText text(5);
  EXPECT_TRUE(text.append("ab"));
  EXPECT_TRUE(text.append("cde"));
  EXPECT_TRUE(text.append(""));
  EXPECT_EQ(text.take(), "abcde");
}

TEST(BoundedText, PieceBeyondLimitIsRefusedWhole) {
  BoundedText text(5);
  EXPECT_TRUE(text.append("abc"));
  EXPECT_FALSE(text.append("def"));
  EXPECT_TRUE(text.append("de"));
  EXPECT_EQ(text.take(), "abcde");
}

TEST(BoundedText, CapacityStaysWithinLimit) {
  constexpr std::size_t limit = 100'000;
  BoundedText text(limit);
  while (text.append(std::string(999, 'x'))) continue;
  const std::string taken = text.take();
  EXPECT_EQ(taken.size(), 99'900U);
  EXPECT_LE(taken.capacity(), limit);
}

}  // namespace

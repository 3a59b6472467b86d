#include "platform/clock.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <ctime>

namespace {

// Returns the UTC offset of the current local time in whole hours.
int hoursAhead() {
  const std::tm local = platform::currentLocalTime();
  return static_cast<int>(local.tm_gmtoff / 3600);
}

TEST(Clock, ReturnsLocalTime) {
  const std::time_t before = std::time(nullptr);
  std::tm shown = platform::currentLocalTime();
  const std::time_t after = std::time(nullptr);
  const std::time_t time = std::mktime(&shown);
  EXPECT_GE(time, before);
  EXPECT_LE(time, after);
}

TEST(Clock, NoticeTimeZoneAppliesChangedTz) {
  ::setenv("TZ", "FAR-9", 1);
  platform::noticeTimeZone();
  EXPECT_EQ(hoursAhead(), 9);
  ::setenv("TZ", "NEAR3", 1);
  platform::noticeTimeZone();
  EXPECT_EQ(hoursAhead(), -3);
}

}  // namespace

#include "platform/uuid.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <mutex>
#include <set>
#include <thread>
#include <vector>

namespace {

TEST(Uuid, HasVersion4InUpperCaseCanonicalForm) {
  for (int i = 0; i < 1000; ++i) {
    // Version 4 (random), variant bits 10 (8 to B).
    ASSERT_THAT(platform::createUuidString(),
                testing::MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}"));
  }
}

TEST(Uuid, IsUniqueAcrossThreads) {
  constexpr std::size_t kThreads = 4;
  constexpr std::size_t kEach = 2000;
  std::mutex mutex;
  std::set<std::string> seen;
  {
    std::vector<std::jthread> threads;
    threads.reserve(kThreads);
    for (std::size_t i = 0; i < kThreads; ++i) {
      threads.emplace_back([&] {
        std::vector<std::string> own(kEach);
        for (std::string& uuid : own) uuid = platform::createUuidString();
        const std::lock_guard lock(mutex);
        seen.insert(own.begin(), own.end());
      });
    }
  }
  EXPECT_EQ(seen.size(), kThreads * kEach);
}

TEST(Uuid, EveryRandomPositionTakesEveryDigit) {
  std::vector<std::set<char>> digits(36);
  for (int i = 0; i < 2000; ++i) {
    const std::string uuid = platform::createUuidString();
    ASSERT_EQ(uuid.size(), digits.size());
    for (std::size_t place = 0; place < digits.size(); ++place) digits[place].insert(uuid[place]);
  }
  for (std::size_t place = 0; place < digits.size(); ++place) {
    const bool hyphen = place == 8 || place == 13 || place == 18 || place == 23;
    const std::size_t expected = hyphen || place == 14 ? 1 : place == 19 ? 4 : 16;
    EXPECT_EQ(digits[place].size(), expected) << "place " << place;
  }
}

}  // namespace

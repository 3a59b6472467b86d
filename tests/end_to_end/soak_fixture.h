#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>

#include "tests/harness/processes/wait_until.h"
#include "tests/harness/sanitizer.h"

// What is done over and over, and what it may cost.
struct Soak {
  const char* what;  // as in "pairs"
  int times;
  int warmUp;       // of them, the first, after which everything is there that is kept for good
  long mostGrowth;  // in kilobytes
};

// The number that this variable of the environment holds, or the usual one.
[[nodiscard]] inline int timesAsked(const char* variable, int usual) {
  const char* asked = std::getenv(variable);
  return asked != nullptr ? std::atoi(asked) : usual;
}

// A fixture's agent that does one thing over and over.
template <typename Fixture>
class SoakTest : public Fixture {
 protected:
  // `repeat` does it so many times.
  void expectNoGrowth(const Soak& soak, const std::function<void(int)>& repeat) {
    ASSERT_GT(soak.times, soak.warmUp);
    repeat(soak.warmUp);
    const auto once = [&] { repeat(1); };
    const long memory = this->memoryWithAllPictures(once), open = this->descriptors();
    repeat(soak.times - soak.warmUp);
    EXPECT_TRUE(test_support::waitUntil([&] { return this->descriptors() == open; }))
        << this->descriptors() << " for " << open;
    if (test_support::isAddressSanitized) GTEST_SKIP() << test_support::memoryIsTheSanitizers;
    const long end = this->memoryWithAllPictures(once);
    EXPECT_LE(std::labs(end - memory), soak.mostGrowth);
    std::printf("%d %s: %ld kB after %d, %ld kB at the end\n", soak.times, soak.what, memory, soak.warmUp,
                end);
  }
};

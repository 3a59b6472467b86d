#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>

#include "tests/end_to_end/running_agent.h"
#include "tests/harness/processes/wait_until.h"
#include "tests/harness/sanitizer.h"

// A repeated action and the growth that it may cause.
struct Soak {
  const char* what;  // for example "pairs"
  int times;
  int warmUp;      // number of initial repetitions that fill the caches
  long maxGrowth;  // in kilobytes
};

// Returns the number in this environment variable; `usual` if it is unset.
[[nodiscard]] inline int timesAsked(const char* variable, int usual) {
  const char* asked = std::getenv(variable);
  return asked != nullptr ? std::atoi(asked) : usual;
}

// Repeats an action and expects no growth of the agent beyond the limit; `repeat` runs it that many times.
inline void expectNoGrowth(RunningAgent& agent, const Soak& soak, const std::function<void(int)>& repeat) {
  ASSERT_GT(soak.times, soak.warmUp);
  repeat(soak.warmUp);
  const auto once = [&] { repeat(1); };
  const long memory = agent.memoryWithAllPictures(once), open = agent.descriptors();
  repeat(soak.times - soak.warmUp);
  EXPECT_TRUE(test_support::waitUntil([&] { return agent.descriptors() == open; }))
      << agent.descriptors() << " for " << open;
  if (test_support::isAddressSanitized) GTEST_SKIP() << test_support::memoryIsTheSanitizers;
  const long end = agent.memoryWithAllPictures(once);
  EXPECT_LE(std::labs(end - memory), soak.maxGrowth);
  std::printf("%d %s: %ld kB after %d, %ld kB at the end\n", soak.times, soak.what, memory, soak.warmUp, end);
}

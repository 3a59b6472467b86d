#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <span>
#include <thread>
#include <vector>

#include "tests/end_to_end/usage/random_session_fixture.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

struct Measure {
  Clock::time_point at = Clock::now();
  long memory = 0;  // in kilobytes
  long descriptors = 0;
  long threads = 0;
  long children = 0;
  long display = 0;  // memory of the X server, in kilobytes
};

// The minimum of several readings, which excludes temporary resources.
long leastOf(const std::function<long()>& number) {
  long least = number();
  for (int i = 0; i < 20; ++i) {
    std::this_thread::sleep_for(5ms);
    least = std::min(least, number());
  }
  return least;
}

long meanMemory(std::span<const Measure> measures) {
  const long sum = std::accumulate(measures.begin(), measures.end(), 0L,
                                   [](long before, const Measure& each) { return before + each.memory; });
  return sum / static_cast<long>(measures.size());
}

double secondsBetween(const Measure& before, const Measure& after) {
  return std::chrono::duration<double>(after.at - before.at).count();
}

// Returns the rise in kilobytes from the first to the last measure along the least-squares line.
double riseOfMemory(std::span<const Measure> measures) {
  const double count = static_cast<double>(measures.size());
  double meanTime = 0, meanMemory = 0;
  for (const Measure& each : measures) {
    meanTime += secondsBetween(measures.front(), each) / count;
    meanMemory += static_cast<double>(each.memory) / count;
  }
  double together = 0, ofTime = 0;
  for (const Measure& each : measures) {
    const double time = secondsBetween(measures.front(), each) - meanTime;
    together += time * (static_cast<double>(each.memory) - meanMemory);
    ofTime += time * time;
  }
  return together / ofTime * secondsBetween(measures.front(), measures.back());
}

class RandomSessionSoak : public RandomSessionTest {
 protected:
  void measure() {
    timeline_.clear();
    const long memory = memoryWithAllPictures([this] { showEverything(); });
    measures_.push_back({.memory = memory,
                         .descriptors = leastOf([this] { return descriptors(); }),
                         .threads = leastOf([this] { return threads(); }),
                         .children = leastOf([this] { return children(); }),
                         .display = displaysMemory()});
    const Measure& now = measures_.back();
    std::printf("%6ld kB %4ld descriptors %4ld threads %4ld children %6ld kB of the display\n", now.memory,
                now.descriptors, now.threads, now.children, now.display);
    std::fflush(stdout);
  }

  // Measures after each of eleven parts.
  void runFor(std::chrono::minutes all) {
    constexpr int parts = 11;
    const auto begin = Clock::now();
    for (int part = 1; part <= parts && !HasFatalFailure(); ++part) {
      const auto end = begin + all * part / parts;
      while (Clock::now() < end && !HasFatalFailure()) act();
      if (!HasFatalFailure()) measure();
    }
  }

  void expectNoGrowthOfResources() {
    const Measure &first = measures_.front(), &last = measures_.back();
    EXPECT_LE(std::labs(last.memory - first.memory), 2048);
    EXPECT_EQ(last.descriptors, first.descriptors);
    EXPECT_EQ(last.threads, first.threads);
    // The web view's helper ends when it is idle.
    EXPECT_LE(last.children, 1);
    EXPECT_LE(last.display - first.display, 4096);
    const std::span<const Measure> all = measures_;
    const auto half = all.size() / 2;
    EXPECT_LE(meanMemory(all.subspan(half)) - meanMemory(all.first(half)), 1024);
  }

  // The comparison of the halves hides a slow leak, which the line reveals; a short session has too few
  // measures for it.
  void expectNoSlowGrowth() {
    const double rise = riseOfMemory(measures_);
    std::printf("memory rises by %.0f kB along a straight line\n", rise);
    EXPECT_LE(rise, 500);
  }

  // The button is disabled only if the version was not fetched in time.
  void expectUpdatesOpened() {
    const int asked = acts().at("update");
    std::printf("%d of %d updates came\n", updates(), asked);
    EXPECT_GE(2 * updates(), asked);
  }

  void expectNoRecordLost() {
    RecordCounts found = recordsLeft();
    for (const auto& [record, count] : uploads().recordsAccepted()) found[record] += count;
    EXPECT_EQ(differenceOf(written(), found), "");
    EXPECT_THAT(uploads().errors(pastFiles()), testing::IsEmpty());
    EXPECT_GT(uploads().accepted(), 0U);
    EXPECT_GT(uploads().arrived(), uploads().accepted());
    report();
  }

 private:
  void report() {
    long records = 0;
    for (const auto& [record, count] : written()) records += count;
    std::printf("%ld records written and found, %zu uploads, %zu of them accepted\n", records,
                uploads().arrived(), uploads().accepted());
    for (const auto& [name, count] : acts())
      std::printf("%5d %.*s\n", count, static_cast<int>(name.size()), name.data());
  }

  std::vector<Measure> measures_;
};

TEST_F(RandomSessionSoak, LeaksNothingAndLosesNoRecord) {
  const char* asked = std::getenv("TOVALIN_SOAK_MINUTES");
  const int minutes = asked != nullptr ? std::atoi(asked) : 0;
  ASSERT_NO_FATAL_FAILURE(beginSession());
  for (int i = 0; i < 3; ++i) ASSERT_NO_FATAL_FAILURE(act());
  ASSERT_NO_FATAL_FAILURE(endBySignal());
  ASSERT_NO_FATAL_FAILURE(beginSession());
  ASSERT_NO_FATAL_FAILURE(performAll());
  ASSERT_NO_FATAL_FAILURE(measure());
  if (minutes > 0) runFor(std::chrono::minutes(minutes));
  // Stop after a failure: further actions would fail for the same reason.
  for (int i = 0; i < 10 && !HasFatalFailure(); ++i) act();
  if (HasFatalFailure()) return;
  ASSERT_NO_FATAL_FAILURE(measure());
  expectNoGrowthOfResources();
  if (minutes > 0) {
    expectNoSlowGrowth();
    expectUpdatesOpened();
  }
  ASSERT_NO_FATAL_FAILURE(endByForce());
  ASSERT_NO_FATAL_FAILURE(beginSession());
  ASSERT_NO_FATAL_FAILURE(endByMenu());
  expectNoRecordLost();
}

}  // namespace

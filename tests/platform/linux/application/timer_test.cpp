#include "platform/timer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <vector>

#include "platform/application.h"
#include "tests/harness/desktop/event_loop.h"

namespace {

using namespace std::chrono_literals;
using platform::Timer;
using std::chrono::steady_clock;

constexpr auto interval = 50ms;

// The times at which a timer fires, relative to its creation.
struct Ticks {
  std::vector<steady_clock::duration> moments = {};
  std::function<void()> onFirst = [] {};
  steady_clock::time_point begin = steady_clock::now();
  std::shared_ptr<Timer> timer = Timer::scheduledTimer(interval, [this] {
    moments.push_back(steady_clock::now() - begin);
    if (moments.size() == 1) onFirst();
  });

  [[nodiscard]] bool wait(std::size_t count) const {
    return serveEventsUntil([&] { return moments.size() >= count; });
  }
};

void sleepOnTheMainThread(steady_clock::duration time) {
  std::this_thread::sleep_for(time);
}

TEST(Timer, FiresRepeatedlyAndNeverEarly) {
  Ticks ticks;
  ASSERT_TRUE(ticks.wait(10));
  for (std::size_t i = 0; i < ticks.moments.size(); ++i) EXPECT_GE(ticks.moments[i], (i + 1) * interval) << i;
}

// Returns the smallest delay of a tick behind the latest due time before it, from tick `first` on.
steady_clock::duration leastLateness(const std::vector<steady_clock::duration>& moments, std::size_t first) {
  steady_clock::duration least = interval;
  for (std::size_t i = first; i < moments.size(); ++i) least = std::min(least, moments[i] % interval);
  return least;
}

TEST(Timer, LateTickDoesNotDelayLaterOnes) {
  Ticks ticks;
  ticks.onFirst = [] { sleepOnTheMainThread(2 * interval + interval / 2); };
  ASSERT_TRUE(ticks.wait(40));
  EXPECT_LT(leastLateness(ticks.moments, 2), interval / 4);
}

TEST(Timer, TicksMissedWhileThreadIsBusyAreMerged) {
  Ticks ticks;
  ticks.onFirst = [] { sleepOnTheMainThread(10 * interval + interval / 2); };
  ASSERT_TRUE(ticks.wait(4));
  EXPECT_GE(ticks.moments[1], 11 * interval);
  EXPECT_GE(ticks.moments[2], 12 * interval);
  EXPECT_GE(ticks.moments[3], 13 * interval);
}

TEST(Timer, InvalidatedTimerDoesNotFire) {
  Ticks ticks;
  ASSERT_TRUE(ticks.wait(1));
  ticks.timer->invalidate();
  const std::size_t before = ticks.moments.size();
  Ticks other;
  ASSERT_TRUE(other.wait(4));
  EXPECT_EQ(ticks.moments.size(), before);
}

TEST(Timer, DestroyedTimerDoesNotFire) {
  int count = 0;
  auto timer = Timer::scheduledTimer(1ms, [&] { ++count; });
  timer.reset();
  Ticks other;
  ASSERT_TRUE(other.wait(2));
  EXPECT_EQ(count, 0);
}

TEST(Timer, ActionMayDestroyItsTimer) {
  int count = 0;
  std::shared_ptr<Timer> timer;
  std::vector<int> captured(1000, 7);
  timer = Timer::scheduledTimer(1ms, [&, captured] {
    timer.reset();
    count += captured.back();
  });
  Ticks other;
  ASSERT_TRUE(other.wait(2));
  EXPECT_EQ(count, 7);
}

}  // namespace

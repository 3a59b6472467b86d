#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "tools/fleet/seconds.h"

namespace fleet {

// Statistics of an event in a span of seconds.
struct Rate {
  std::uint64_t total = 0;
  double mean = 0;               // per second
  std::uint32_t percentile = 0;  // 99 % of the seconds have no more (nearest rank)
  std::uint32_t peak = 0;
  Seconds peakAt = 0;  // the first second with the peak, counted from the beginning of the day
};

// The number of events in each second of the counted day.
class DayLoad {
 public:
  DayLoad() : seconds_(static_cast<std::size_t>(day)) {}

  // `time` counts from the beginning of the day. Ignores times outside the day.
  void add(Seconds time, int count = 1) {
    if (time >= 0 && time < day)
      seconds_[static_cast<std::size_t>(time)] += static_cast<std::uint32_t>(count);
  }

  [[nodiscard]] std::span<const std::uint32_t> seconds() const { return seconds_; }

  // Returns the statistics of `length` seconds from `begin` on, which must be within the day.
  [[nodiscard]] Rate rate(Seconds begin = 0, Seconds length = day) const;

  // Returns the beginning of the hour with the most events. Hours begin at full minutes.
  [[nodiscard]] Seconds busiestHour() const;

 private:
  std::vector<std::uint32_t> seconds_;
};

}  // namespace fleet

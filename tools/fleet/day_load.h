#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "tools/fleet/seconds.h"

namespace fleet {

// How often something happens in a span of seconds.
struct Rate {
  std::uint64_t total = 0;
  double mean = 0;               // a second
  std::uint32_t percentile = 0;  // 99 of 100 seconds have no more (nearest rank)
  std::uint32_t peak = 0;
  Seconds peakAt = 0;  // the first second with so many, from the first second of the day
};

// How often something happens in each second of the counted day.
class DayLoad {
 public:
  DayLoad() : seconds_(static_cast<std::size_t>(day)) {}

  // Ignores a time outside the day; `time` counts from its first second.
  void add(Seconds time, int count = 1) {
    if (time >= 0 && time < day)
      seconds_[static_cast<std::size_t>(time)] += static_cast<std::uint32_t>(count);
  }

  [[nodiscard]] std::span<const std::uint32_t> seconds() const { return seconds_; }

  // Of `length` seconds from `begin` on, which lie within the day.
  [[nodiscard]] Rate rate(Seconds begin = 0, Seconds length = day) const;

  // Where the hour with the most begins; hours begin at full minutes.
  [[nodiscard]] Seconds busiestHour() const;

 private:
  std::vector<std::uint32_t> seconds_;
};

}  // namespace fleet

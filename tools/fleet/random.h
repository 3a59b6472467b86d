#pragma once

#include <cmath>
#include <cstdint>

namespace fleet {

// A random number generator (SplitMix64) with the same sequence on every machine for the same seed. For one
// thread.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}

  [[nodiscard]] std::uint64_t next() {
    state_ += 0x9E3779B97F4A7C15;
    std::uint64_t value = state_;
    value = (value ^ (value >> 30u)) * 0xBF58476D1CE4E5B9;
    value = (value ^ (value >> 27u)) * 0x94D049BB133111EB;
    return value ^ (value >> 31u);
  }

  // Returns a number from 0 to `count` - 1; `count` is from 1 to 2^32.
  [[nodiscard]] std::int64_t below(std::int64_t count) {
    return static_cast<std::int64_t>((next() >> 32u) * static_cast<std::uint64_t>(count) >> 32u);
  }

  // Returns a number in [0, 1).
  [[nodiscard]] double share() { return static_cast<double>(next() >> 11u) * 0x1p-53; }

  // Returns an approximately normally distributed number with mean 0 and standard deviation 1: the sum of
  // four uniform numbers. It is bounded by 3.47, so that a time of day drawn with it stays within its half of
  // the day.
  [[nodiscard]] double bell() {
    const std::uint64_t bits = next();
    double sum = 0;
    for (unsigned shift = 0; shift < 64; shift += 16) sum += static_cast<double>(bits >> shift & 0xFFFFu);
    return (sum / 0x10000 - 2) * std::sqrt(3.0);
  }

 private:
  std::uint64_t state_;
};

}  // namespace fleet

#pragma once

#include <cstdint>

namespace fleet {

// Seconds as plain numbers: ten million days are simulated with them. Times are local unless they are named
// otherwise, and count from the local midnight with which the simulated day's date begins.
using Seconds = std::int64_t;

inline constexpr Seconds minute = 60;
inline constexpr Seconds hour = 60 * minute;
inline constexpr Seconds day = 24 * hour;

// The 24 hours that are counted begin at noon UTC, so that a midnight of Europe or Africa stands in their
// middle and not at their edge.
inline constexpr Seconds firstCounted = 12 * hour;

// Rounds towards minus infinity.
[[nodiscard]] constexpr Seconds daysIn(Seconds time) {
  return (time >= 0 ? time : time - (day - 1)) / day;
}

}  // namespace fleet

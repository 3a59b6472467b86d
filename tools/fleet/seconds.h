#pragma once

#include <cstdint>

namespace fleet {

// Seconds as plain integers, for speed. Times are local unless noted otherwise and count from the local
// midnight at the beginning of the simulated date.
using Seconds = std::int64_t;

inline constexpr Seconds minute = 60;
inline constexpr Seconds hour = 60 * minute;
inline constexpr Seconds day = 24 * hour;

// The 24 counted hours begin at noon UTC, so that midnight in Europe and Africa is in the middle and not at
// the edge.
inline constexpr Seconds firstCounted = 12 * hour;

// Rounds towards negative infinity.
[[nodiscard]] constexpr Seconds daysIn(Seconds time) {
  return (time >= 0 ? time : time - (day - 1)) / day;
}

}  // namespace fleet

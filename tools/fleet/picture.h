#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "tools/fleet/simulation.h"

namespace fleet {

// The number of characters of a caption that fit the picture's width; a longer caption is cut.
inline constexpr std::size_t picturedCaption = 90;

// Returns the day as an SVG: uploads over the day and in the busiest hour, and launches over the day.
[[nodiscard]] std::string picture(std::uint64_t installations, const std::string& caption,
                                  const FleetDay& result);

// Returns the smallest number of the form 1, 2, 2.5 or 5 times a power of ten that is at least `value` and at
// least 1, so that axis labels are round numbers.
[[nodiscard]] double axisMaximum(double value);

// Formats a number as in "167 k".
[[nodiscard]] std::string shortNumber(double number);

}  // namespace fleet

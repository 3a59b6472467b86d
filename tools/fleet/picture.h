#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "tools/fleet/simulation.h"

namespace fleet {

// So many characters of a caption fit the picture's width; a longer one is cut.
inline constexpr std::size_t picturedCaption = 90;

// The day as an SVG: uploads over the day and in the busiest hour, and launches over the day.
[[nodiscard]] std::string picture(std::uint64_t installations, const std::string& caption,
                                  const FleetDay& result);

// The smallest of 1, 2, 2.5 and 5 times a power of ten that is not below `value`, so that an axis has even
// numbers; 1 at least.
[[nodiscard]] double topOfAxis(double value);

// "167 k"
[[nodiscard]] std::string shortNumber(double number);

}  // namespace fleet

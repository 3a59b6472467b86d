#pragma once

#include <algorithm>
#include <cmath>

namespace test_support {

// Returns the relative luminance of WCAG 2 of a colour with channels from 0 to 255: 0 is black, 1 is white.
[[nodiscard]] inline double luminance(int red, int green, int blue) {
  const auto linear = [](int channel) {
    const double value = channel / 255.0;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(red) + 0.7152 * linear(green) + 0.0722 * linear(blue);
}

// Returns the contrast ratio of WCAG 2 between two luminances, from 1 to 21.
[[nodiscard]] inline double contrastRatio(double one, double other) {
  const auto [darker, lighter] = std::minmax(one, other);
  return (lighter + 0.05) / (darker + 0.05);
}

}  // namespace test_support

#pragma once

namespace platform {

// A calibrated colour (sRGB) with components from 0 to 1. A value type; usable on any thread.
struct Color {
  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 1;
  bool operator==(const Color&) const = default;
};

// Returns the colour of this hue (as a fraction of the full circle), saturation and brightness, each from 0
// to 1.
[[nodiscard]] Color colorFromHsb(double hue, double saturation, double brightness, double alpha = 1);

[[nodiscard]] constexpr Color blueColor() {
  return {0, 0, 1, 1};
}

}  // namespace platform

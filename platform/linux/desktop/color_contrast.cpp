#include "platform/linux/desktop/color_contrast.h"

#include <algorithm>
#include <cmath>

namespace platform {
namespace {

double linear(float component) {
  return component <= 0.04045F ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

// Returns the colour on the way from `from` (0) to `to` (`steps`).
QColor between(const QColor& from, const QColor& to, int step, int steps) {
  const auto mixed = [&](int a, int b) { return a + (b - a) * step / steps; };
  return {mixed(from.red(), to.red()), mixed(from.green(), to.green()), mixed(from.blue(), to.blue())};
}

}  // namespace

double contrastRatio(const QColor& one, const QColor& other) {
  const double a = luminance(one), b = luminance(other);
  return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

QColor withContrast(const QColor& color, const QColor& background, double ratio) {
  const QColor black(Qt::black), white(Qt::white);
  const QColor& end = contrastRatio(black, background) > contrastRatio(white, background) ? black : white;
  constexpr int steps = 32;
  for (int step = 0; step < steps; ++step) {
    const QColor shade = between(color, end, step, steps);
    if (contrastRatio(shade, background) >= ratio) return shade;
  }
  return end;
}

}  // namespace platform

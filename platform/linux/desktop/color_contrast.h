#pragma once

#include <QColor>

namespace platform {

// The contrast that WCAG 2.1 requires of text, and of parts of controls such as a focus ring.
inline constexpr double minTextContrast = 4.5, minControlContrast = 3;

// Returns the contrast ratio of WCAG 2.1 between two opaque colours, from 1 to 21. Thread-safe.
[[nodiscard]] double contrastRatio(const QColor& one, const QColor& other);

// Returns `color` if its contrast to `background` is at least `ratio`. Otherwise returns the nearest shade of
// it that has this contrast: darker on a light background, lighter on a dark one. Returns black or white if
// no shade has it. Thread-safe.
[[nodiscard]] QColor withContrast(const QColor& color, const QColor& background, double ratio);

}  // namespace platform

#pragma once

#include <optional>
#include <vector>

#include <QPoint>
#include <QRect>

namespace platform {

// A screen in Qt's geometry: its corner in pixels, its size in points.
struct ScaledScreen {
  QRect geometry;
  double scale = 1;
};

// Returns Qt's coordinates, in points, of a pixel of the X screen; nullopt if no screen contains it. Pure
// function.
[[nodiscard]] std::optional<QPoint> pointAtPixel(QPoint pixel, const std::vector<ScaledScreen>& screens);

}  // namespace platform

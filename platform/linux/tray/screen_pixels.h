#pragma once

#include <optional>
#include <vector>

#include <QPoint>
#include <QRect>

namespace platform {

// A screen as the toolkit sees it: its corner in pixels, its size in points.
struct ScaledScreen {
  QRect geometry;
  double scale = 1;
};

// The toolkit's point for a pixel of the X screen; nullopt where no screen has that pixel. Plain function.
[[nodiscard]] std::optional<QPoint> pointAtPixel(QPoint pixel, const std::vector<ScaledScreen>& screens);

}  // namespace platform

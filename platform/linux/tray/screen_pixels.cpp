#include "platform/linux/tray/screen_pixels.h"

namespace platform {

std::optional<QPoint> pointAtPixel(QPoint pixel, const std::vector<ScaledScreen>& screens) {
  for (const ScaledScreen& screen : screens) {
    const QPoint corner = screen.geometry.topLeft();
    if (QRect(corner, screen.geometry.size() * screen.scale).contains(pixel))
      return corner + (pixel - corner) / screen.scale;
  }
  return std::nullopt;
}

}  // namespace platform

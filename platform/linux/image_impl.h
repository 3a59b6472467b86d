#pragma once

#include <vector>

#include <QImage>
#include <QPixmap>
#include <QString>

#include "platform/image.h"

namespace platform {

struct Image::Impl {
  Size size;
  Size naturalSize;
  bool scalesWhenResized = false;
  // Names the picture where it will be asked for again; empty for one that comes and goes.
  QString name;
  // The same picture at rising numbers of pixels; empty when there is none.
  std::vector<QImage> forms;

  // The form that has at least so many pixels across, else the most detailed one. Only for a valid image.
  [[nodiscard]] const QImage& formFor(double pixelsAcross) const;
  // The most detailed form with its pixels to the point set, so that it measures `size`. Null for an invalid
  // image.
  [[nodiscard]] QPixmap pixmap() const;
  // Each form like that, for screens of different scales.
  [[nodiscard]] std::vector<QPixmap> pixmaps() const;
};

// Device pixels to the point on the finest screen; 1 without screens.
[[nodiscard]] double backingScale();

}  // namespace platform

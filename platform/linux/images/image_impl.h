#pragma once

#include <algorithm>
#include <vector>

#include <QImage>
#include <QPixmap>
#include <QString>

#include "platform/image.h"

namespace platform {

// Returns the first of the bitmap representations, in ascending order of width, that is at least
// `pixelsAcross` wide, else the last one. `representations` must not be empty.
template <typename Representation>
[[nodiscard]] const Representation& selectRepresentation(const std::vector<Representation>& representations,
                                                         double pixelsAcross) {
  const auto enough = std::ranges::find_if(representations, [&](const Representation& representation) {
    return representation.width() >= pixelsAcross;
  });
  return enough != representations.end() ? *enough : representations.back();
}

struct Image::Impl {
  Size size;
  Size naturalSize;
  bool scalesWhenResized = false;
  // Cache key of an image from a file; empty for other images, which are not cached.
  QString name;
  // The file whose whole picture fills this image; empty if there is none.
  QString file;
  // Bitmap representations in ascending order of width; empty if the image is not valid.
  std::vector<QImage> representations;

  // Returns the representation for a width of `pixelsAcross` pixels. The image must be valid.
  [[nodiscard]] const QImage& representationFor(double pixelsAcross) const {
    return selectRepresentation(representations, pixelsAcross);
  }
  // Returns the factor, at most 1, that fits the image into `bounds`, in points. The image must be valid.
  [[nodiscard]] double shrinkInto(Size bounds) const;
  // Returns the image scaled to exactly `pixels`. The image must be valid.
  [[nodiscard]] QImage scaledTo(QSize pixels) const;
  // Like scaledTo, but reads the file's "@2x" and "@4x" representations if those of the image, which suit the
  // screens, are too small.
  [[nodiscard]] QImage detailedTo(QSize pixels) const;
  // Returns the most detailed representation with the device pixel ratio at which it measures `size`. Returns
  // a null pixmap if the image is not valid.
  [[nodiscard]] QPixmap pixmap() const;
  // Returns all representations in the same way, for screens of different scales.
  [[nodiscard]] std::vector<QPixmap> pixmaps() const;
};

// Returns the number of device pixels per point on the screen with the largest scale; 1 without screens.
[[nodiscard]] double backingScale();

}  // namespace platform

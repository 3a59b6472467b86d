#pragma once

#include <algorithm>
#include <vector>

#include <QImage>
#include <QPixmap>
#include <QString>

#include "platform/image.h"

namespace platform {

// Returns the first of the bitmap representations, in ascending order of width, that is at least
// `pixelsAcross` wide, else the last one. `forms` must not be empty.
template <typename Form>
[[nodiscard]] const Form& selectRepresentation(const std::vector<Form>& forms, double pixelsAcross) {
  const auto enough =
      std::ranges::find_if(forms, [&](const Form& form) { return form.width() >= pixelsAcross; });
  return enough != forms.end() ? *enough : forms.back();
}

struct Image::Impl {
  Size size;
  Size naturalSize;
  bool scalesWhenResized = false;
  // Cache key of an image from a file; empty for other images, which are not cached.
  QString name;
  // Bitmap representations in ascending order of width; empty if the image is not valid.
  std::vector<QImage> forms;

  // Returns the representation for a width of `pixelsAcross` pixels. The image must be valid.
  [[nodiscard]] const QImage& representationFor(double pixelsAcross) const {
    return selectRepresentation(forms, pixelsAcross);
  }
  // Returns the factor, at most 1, that fits the image into `bounds`, in points. The image must be valid.
  [[nodiscard]] double shrinkInto(Size bounds) const;
  // Returns the image scaled to exactly `pixels`. The image must be valid.
  [[nodiscard]] QImage scaledTo(QSize pixels) const;
  // Returns the most detailed representation with the device pixel ratio at which it measures `size`. Returns
  // a null pixmap if the image is not valid.
  [[nodiscard]] QPixmap pixmap() const;
  // Returns all representations in the same way, for screens of different scales.
  [[nodiscard]] std::vector<QPixmap> pixmaps() const;
};

// Returns the number of device pixels per point on the screen with the largest scale; 1 without screens.
[[nodiscard]] double backingScale();

}  // namespace platform

#pragma once

#include <algorithm>
#include <vector>

#include <QImage>
#include <QPixmap>
#include <QString>

#include "platform/image.h"

namespace platform {

// Of a picture's forms at rising numbers of pixels: the first that has at least so many across, else the most
// detailed one. There is at least one.
template <typename Form>
[[nodiscard]] const Form& formAmong(const std::vector<Form>& forms, double pixelsAcross) {
  const auto enough =
      std::ranges::find_if(forms, [&](const Form& form) { return form.width() >= pixelsAcross; });
  return enough != forms.end() ? *enough : forms.back();
}

struct Image::Impl {
  Size size;
  Size naturalSize;
  bool scalesWhenResized = false;
  // Names the picture where it will be asked for again; empty for one that comes and goes.
  QString name;
  // The same picture at rising numbers of pixels; empty when there is none.
  std::vector<QImage> forms;

  // All three only for a valid image: the form for so many pixels across, the factor that fits it into
  // `room`, no larger than it is, and the picture of just so many pixels.
  [[nodiscard]] const QImage& formFor(double pixelsAcross) const { return formAmong(forms, pixelsAcross); }
  [[nodiscard]] double shrinkInto(Size room) const;
  [[nodiscard]] QImage scaledTo(QSize pixels) const;
  // The most detailed form with its pixels to the point set, so that it measures `size`. Null for an invalid
  // image.
  [[nodiscard]] QPixmap pixmap() const;
  // Each form like that, for screens of different scales.
  [[nodiscard]] std::vector<QPixmap> pixmaps() const;
};

// Device pixels to the point on the finest screen; 1 without screens.
[[nodiscard]] double backingScale();

}  // namespace platform

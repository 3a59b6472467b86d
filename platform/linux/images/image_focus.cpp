#include <QPainter>

#include "platform/image.h"
#include "platform/linux/images/cached_pixels.h"
#include "platform/linux/images/image_impl.h"

namespace platform {
namespace {

// Converts the part `from` of an image, in points from the lower left, to pixels of a bitmap representation.
QRectF sourcePixels(const Image::Impl& image, const QImage& representation, Rect from) {
  const Size base = image.scalesWhenResized ? image.size : image.naturalSize;
  const double x = representation.width() / base.width, y = representation.height() / base.height;
  return {from.x * x, representation.height() - (from.y + from.height) * y, from.width * x, from.height * y};
}

// Scales by area averaging: QPainter's smoothing samples four neighbours only and drops lines at large
// reductions. Caches only named images, which are usually scaled to the same size again.
QImage averaged(const QString& name, const QImage& representation, QRect part, QSize size) {
  const auto average = [&] {
    const QImage piece = part == representation.rect() ? representation : representation.copy(part);
    return piece.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  };
  if (name.isEmpty()) return average();
  const QString key = QString::asprintf(" %d %d %d %d %d %d %d", representation.width(), part.x(), part.y(),
                                        part.width(), part.height(), size.width(), size.height());
  return cachedPixels(name + key, average);
}

}  // namespace

struct ImageFocus::Impl {
  Image::Impl& target;
  ImageInterpolation interpolation = ImageInterpolation::Low;

  [[nodiscard]] QRectF pixelsOn(const QImage& canvas, Rect rect) const {
    const double x = canvas.width() / target.size.width, y = canvas.height() / target.size.height;
    return {rect.x * x, canvas.height() - (rect.y + rect.height) * y, rect.width * x, rect.height * y};
  }
  // Returns whether the target shows nothing but the whole source afterwards.
  [[nodiscard]] bool replacesAll(const Image& source, Point at, Rect from, CompositingOperation operation,
                                 double fraction) const;
  void drawOn(QImage& canvas, const Image::Impl& source, Point at, Rect from, CompositingOperation operation,
              double fraction) const;
};

ImageFocus::ImageFocus(Image& target) : impl_(new Impl{target.impl()}) {}
ImageFocus::~ImageFocus() = default;

void ImageFocus::setImageInterpolation(ImageInterpolation interpolation) {
  impl_->interpolation = interpolation;
}

void ImageFocus::draw(const Image& source, Point at, Rect from, CompositingOperation operation,
                      double fraction) {
  if (!source.isValid()) return;
  const bool replaces = impl_->replacesAll(source, at, from, operation, fraction);
  impl_->target.file = replaces ? source.impl().file : QString();
  for (QImage& canvas : impl_->target.representations)
    impl_->drawOn(canvas, source.impl(), at, from, operation, fraction);
}

bool ImageFocus::Impl::replacesAll(const Image& source, Point at, Rect from, CompositingOperation operation,
                                   double fraction) const {
  const Rect whole{0, 0, source.size().width, source.size().height};
  return operation == CompositingOperation::Copy && fraction == 1.0 && at == Point{0, 0} && from == whole &&
         target.size == source.size() && source.impl().scalesWhenResized;
}

void ImageFocus::Impl::drawOn(QImage& canvas, const Image::Impl& source, Point at, Rect from,
                              CompositingOperation operation, double fraction) const {
  const QRectF to = pixelsOn(canvas, {at.x, at.y, from.width, from.height});
  const QImage& representation = source.representationFor(to.width());
  const QRect part = sourcePixels(source, representation, from).toAlignedRect();

  const bool averages = interpolation == ImageInterpolation::High;
  // An image that replaces the whole canvas is assigned, which avoids copying all pixels.
  if (averages && operation == CompositingOperation::Copy && fraction == 1.0 && to == QRectF(canvas.rect())) {
    canvas = averaged(source.name, representation, part, canvas.size()).convertToFormat(canvas.format());
    return;
  }
  QPainter painter(&canvas);
  painter.setCompositionMode(operation == CompositingOperation::Copy ? QPainter::CompositionMode_Source
                                                                     : QPainter::CompositionMode_SourceOver);
  painter.setOpacity(fraction);
  if (averages) {
    painter.drawImage(to.topLeft(), averaged(source.name, representation, part, to.size().toSize()));
    return;
  }
  painter.setRenderHint(QPainter::SmoothPixmapTransform, interpolation == ImageInterpolation::Low);
  painter.drawImage(to, representation, part);
}

}  // namespace platform

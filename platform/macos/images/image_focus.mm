#include "platform/macos/images/image_impl.h"

namespace platform {
namespace {

NSCompositingOperation nativeOperation(CompositingOperation operation) {
  return operation == CompositingOperation::Copy ? NSCompositingOperationCopy
                                                 : NSCompositingOperationSourceOver;
}

}  // namespace

struct ImageFocus::Impl {
  NSImage* target;  // nil if the image is no drawing target
};

ImageFocus::ImageFocus(Image& target)
    : impl_(new Impl{target.impl().isDrawable ? target.impl().image.get() : nil}) {
  [impl_->target lockFocus];
}

ImageFocus::~ImageFocus() {
  [impl_->target unlockFocus];
}

void ImageFocus::setImageInterpolation(ImageInterpolation interpolation) {
  if (impl_->target == nil) return;
  [[NSGraphicsContext currentContext] setImageInterpolation:interpolation == ImageInterpolation::High
                                                                ? NSImageInterpolationHigh
                                                                : NSImageInterpolationLow];
}

void ImageFocus::draw(const Image& source, Point at, Rect from, CompositingOperation operation,
                      double fraction) {
  if (impl_->target == nil || !source.isValid()) return;
  [source.impl().image.get() drawInRect:NSMakeRect(at.x, at.y, from.width, from.height)
                               fromRect:NSMakeRect(from.x, from.y, from.width, from.height)
                              operation:nativeOperation(operation)
                               fraction:fraction];
}

}  // namespace platform

#include "platform/macos/image_impl.h"

namespace platform {
namespace {

NSCompositingOperation nativeOperation(CompositingOperation operation) {
  return operation == CompositingOperation::Copy ? NSCompositingOperationCopy
                                                 : NSCompositingOperationSourceOver;
}

}  // namespace

struct ImageFocus::Impl {
  NSImage* target;
  NSImageInterpolation interpolation = NSImageInterpolationLow;

  void drawOn(NSBitmapImageRep* canvas, NSImage* source, NSRect at, NSRect from,
              NSCompositingOperation operation, double fraction) const;
};

ImageFocus::ImageFocus(Image& target) : impl_(new Impl{target.impl().image.get()}) {}
ImageFocus::~ImageFocus() = default;

void ImageFocus::setImageInterpolation(ImageInterpolation interpolation) {
  impl_->interpolation =
      interpolation == ImageInterpolation::High ? NSImageInterpolationHigh : NSImageInterpolationLow;
}

void ImageFocus::draw(const Image& source, Point at, Rect from, CompositingOperation operation,
                      double fraction) {
  if (!source.isValid()) return;
  const NSRect to = NSMakeRect(at.x, at.y, from.width, from.height);
  const NSRect part = NSMakeRect(from.x, from.y, from.width, from.height);
  NSArray* forms = [impl_->target representations];
  for (NSUInteger i = 0; i < [forms count]; ++i)
    impl_->drawOn(static_cast<NSBitmapImageRep*>([forms objectAtIndex:i]), source.impl().image.get(), to, part,
                  nativeOperation(operation), fraction);
}

// A context on the pixels themselves instead of lockFocus, whose pixels are the main screen's.
void ImageFocus::Impl::drawOn(NSBitmapImageRep* canvas, NSImage* source, NSRect at, NSRect from,
                              NSCompositingOperation operation, double fraction) const {
  NSGraphicsContext* context = [NSGraphicsContext graphicsContextWithBitmapImageRep:canvas];
  [NSGraphicsContext saveGraphicsState];
  [NSGraphicsContext setCurrentContext:context];
  [context setImageInterpolation:interpolation];
  [source drawInRect:at fromRect:from operation:operation fraction:fraction];
  [context flushGraphics];
  [NSGraphicsContext restoreGraphicsState];
}

}  // namespace platform

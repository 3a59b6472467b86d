#include "platform/image.h"

#include <cmath>

#include "platform/bundle.h"
#include "platform/macos/foundation/text_impl.h"
#include "platform/macos/images/image_impl.h"
#include "platform/portable/picture_data.h"

namespace platform {
namespace {

constexpr double maxPixels = 64e6;
constexpr double maxDataBytes = 64 << 20;
constexpr double bytesPerPixel = 4;

// Returns whether an image of this size can be a drawing target.
bool canBeDrawnInto(Size size) {
  const double width = std::ceil(size.width), height = std::ceil(size.height);
  return width >= 1 && height >= 1 && width * height <= maxPixels;
}

NSBitmapImageRep* representationInFile(const std::string& path) {
  NSArray* forms = [NSBitmapImageRep imageRepsWithContentsOfFile:textOf(path)];
  return [forms count] == 0 ? nil : static_cast<NSBitmapImageRep*>([forms objectAtIndex:0]);
}

std::string withScaleSuffix(const std::string& path) {
  const std::size_t dot = path.rfind('.');
  return path.substr(0, dot) + "@2x" + path.substr(dot);
}

NSSize pixelsOf(NSBitmapImageRep* form) {
  return NSMakeSize(static_cast<CGFloat>([form pixelsWide]), static_cast<CGFloat>([form pixelsHigh]));
}

// Creates an image with one point per pixel of its first representation.
Retained<NSImage*> imageOf(NSBitmapImageRep* form) {
  Retained<NSImage*> image([[NSImage alloc] initWithSize:pixelsOf(form)]);
  [form setSize:pixelsOf(form)];
  [image.get() addRepresentation:form];
  return image;
}

}  // namespace

Image::Image() : impl_(std::make_unique<Impl>()) {}

Image::Image(Size size) : Image() {
  impl_->image = Retained<NSImage*>([[NSImage alloc] initWithSize:NSMakeSize(size.width, size.height)]);
  impl_->isDrawable = canBeDrawnInto(size);
}

Image::~Image() = default;

bool Image::isValid() const {
  return impl_->isDrawable || [[impl_->image.get() representations] count] > 0;
}

Size Image::size() const {
  const NSSize size = [impl_->image.get() size];
  return {size.width, size.height};
}

void Image::setSize(Size size) {
  [impl_->image.get() setSize:NSMakeSize(size.width, size.height)];
}

// NSImage always scales its content to its size.
void Image::setScalesWhenResized(bool scales) {
  static_cast<void>(scales);
}

Size Image::pixelSize() const {
  Size most;
  NSArray* forms = [impl_->image.get() representations];
  for (NSUInteger i = 0; i < [forms count]; ++i) {
    const NSSize pixels = pixelsOf(static_cast<NSBitmapImageRep*>([forms objectAtIndex:i]));
    if (pixels.width > most.width) most = {pixels.width, pixels.height};
  }
  return most;
}

std::shared_ptr<Image> imageNamed(std::string_view name) {
  const auto bundle = Bundle::mainBundle();
  if (!bundle) return nullptr;
  const std::string path = bundle->pathForResource(name);
  NSBitmapImageRep* plain = representationInFile(path);
  if (plain == nil) return nullptr;
  std::shared_ptr<Image> image(new Image);
  image->impl_->image = imageOf(plain);
  if (NSBitmapImageRep* fine = representationInFile(withScaleSuffix(path))) {
    [fine setSize:pixelsOf(plain)];
    [image->impl_->image.get() addRepresentation:fine];
  }
  return image;
}

// Decodes bitmap formats only: in vector formats, the size of the image does not bound the memory needed.
std::shared_ptr<Image> imageWithData(std::string_view bytes) {
  const auto bounded = boundedPictureData(bytes);
  if (!bounded) return nullptr;
  NSArray* forms = [NSBitmapImageRep imageRepsWithData:[NSData dataWithBytes:bounded->data()
                                                                      length:bounded->size()]];
  if ([forms count] == 0) return nullptr;
  auto* form = static_cast<NSBitmapImageRep*>([forms objectAtIndex:0]);
  const NSSize pixels = pixelsOf(form);
  if (!(pixels.width >= 1 && pixels.height >= 1)) return nullptr;
  if (pixels.width * pixels.height * bytesPerPixel > maxDataBytes) return nullptr;
  std::shared_ptr<Image> image(new Image);
  image->impl_->image = imageOf(form);
  return image;
}

}  // namespace platform

#include "notices/image_resize.h"

#include "platform/image.h"
#include "platform/log.h"

std::shared_ptr<platform::Image> imageResize(platform::Image* image, double width, double height) {
  if (image != nullptr) image->setScalesWhenResized(true);
  if (image == nullptr || !image->isValid()) {
    platform::consoleLog("Invalid Image");
    return nullptr;
  }
  auto resized = std::make_shared<platform::Image>(platform::Size{width, height});
  // Also reached when out of memory. An invalid image is returned all the same.
  if (!resized->isValid()) platform::consoleLog("Invalid Image");
  platform::ImageFocus focus(*resized);
  image->setSize({width, height});
  focus.setImageInterpolation(platform::ImageInterpolation::High);
  focus.draw(*image, {0, 0}, {0, 0, width, height}, platform::CompositingOperation::Copy, 1.0);
  return resized;
}

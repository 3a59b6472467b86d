#pragma once

#import <Cocoa/Cocoa.h>

#include "platform/image.h"
#include "platform/macos/foundation/retained.h"

namespace platform {

struct Image::Impl {
  Retained<NSImage*> image;
  bool takesDrawing = false;  // AppKit counts an image without pixels as invalid until it is drawn into
};

}  // namespace platform

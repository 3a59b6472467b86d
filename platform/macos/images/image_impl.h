#pragma once

#import <Cocoa/Cocoa.h>

#include "platform/image.h"
#include "platform/macos/foundation/retained.h"

namespace platform {

struct Image::Impl {
  Retained<NSImage*> image;
  bool isDrawable = false;  // NSImage without representations, invalid until drawn into
};

}  // namespace platform

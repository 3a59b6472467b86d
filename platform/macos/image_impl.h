#pragma once

#import <Cocoa/Cocoa.h>

#include "platform/image.h"
#include "platform/macos/retained.h"

namespace platform {

struct Image::Impl {
  Retained<NSImage*> image;
};

}  // namespace platform

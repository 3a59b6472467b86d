#pragma once

#import <Cocoa/Cocoa.h>

#include "platform/color.h"

namespace platform {

[[nodiscard]] inline NSColor* nativeColor(Color color) {
  return [NSColor colorWithCalibratedRed:color.red green:color.green blue:color.blue alpha:color.alpha];
}

}  // namespace platform

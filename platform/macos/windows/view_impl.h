#pragma once

#import <Cocoa/Cocoa.h>

#include <memory>
#include <vector>

#include "platform/macos/foundation/retained.h"
#include "platform/view.h"

namespace platform {

struct View::Impl {
  // Takes over the caller's reference to `body`.
  Impl(Rect rect, NSView* body);

  Rect frame;
  std::vector<std::shared_ptr<View>> subviews;
  Retained<NSView*> view;
};

[[nodiscard]] inline NSRect nativeRect(Rect rect) {
  return NSMakeRect(rect.x, rect.y, rect.width, rect.height);
}

}  // namespace platform

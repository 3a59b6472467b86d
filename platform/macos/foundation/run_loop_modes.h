#pragma once

#import <Cocoa/Cocoa.h>

namespace platform {

// The modes in which the main run loop serves posted work and timers: also while a window runs modally and
// while a menu is open. Autoreleased.
[[nodiscard]] inline NSArray* servedModes() {
  return [NSArray
      arrayWithObjects:NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode, nil];
}

}  // namespace platform

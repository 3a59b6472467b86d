#pragma once

#import <Cocoa/Cocoa.h>

namespace platform {

// Returns the modes in which the main run loop runs posted work and timers: the default mode, modal runs and
// menu tracking. Autoreleased.
[[nodiscard]] inline NSArray* servedModes() {
  return [NSArray
      arrayWithObjects:NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode, nil];
}

}  // namespace platform

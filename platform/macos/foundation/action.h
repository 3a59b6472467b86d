#pragma once

#import <Cocoa/Cocoa.h>

#include <functional>

// Calls a C++ function for what AppKit and Foundation call with a selector: actions of controls and menu
// items, timers, observers. Thread: the one that sends `perform:`.
@interface TovalinAction : NSObject {
  // A std::function<void()>. Not every runtime constructs C++ instance variables, and not every compiler can
  // describe this type to the runtime.
  void* work_;
}

// The argument is ignored. The function may release the last other reference to this object.
- (void)perform:(id)sender;

@end

namespace platform {

// Owned by the caller.
[[nodiscard]] TovalinAction* makeAction(std::function<void()> work);

}  // namespace platform

#pragma once

#import <Cocoa/Cocoa.h>

#include <functional>

// Wraps a C++ function as target and selector for AppKit and Foundation: actions of controls and menu items,
// timers, observers. The function runs on the thread that sends `perform:`.
@interface TovalinAction : NSObject {
  // Points to a std::function<void()>. Not a C++ instance variable: some runtimes do not construct those, and
  // some compilers cannot encode the type.
  void* work_;
}

// Calls the function; ignores `sender`. The function may release the last other reference to this object.
- (void)perform:(id)sender;

@end

namespace platform {

// Returns a new object owned by the caller.
[[nodiscard]] TovalinAction* makeAction(std::function<void()> work);

}  // namespace platform

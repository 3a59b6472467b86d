#import <Cocoa/Cocoa.h>

#include "platform/log.h"
#include "platform/macos/foundation/autorelease_pool.h"
#include "platform/macos/foundation/text_impl.h"

namespace platform {

// An agent that launchd starts has no standard error; NSLog writes to the system's log.
void consoleLog(std::string_view text) {
  const AutoreleasePool pool;
  NSLog(@"%@", textOf(text));
}

}  // namespace platform

#include "platform/search_path.h"

#import <Cocoa/Cocoa.h>

#include "platform/macos/foundation/autorelease_pool.h"
#include "platform/macos/foundation/text_impl.h"

namespace platform {

std::optional<std::string> applicationSupportDirectory() {
  const AutoreleasePool pool;
  NSArray* paths = NSSearchPathForDirectoriesInDomains(NSApplicationSupportDirectory, NSUserDomainMask, YES);
  if ([paths count] == 0) return std::nullopt;
  return utf8Of(static_cast<NSString*>([paths objectAtIndex:0]));
}

}  // namespace platform

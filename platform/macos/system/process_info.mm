#include "platform/process_info.h"

#import <Cocoa/Cocoa.h>

#include "platform/macos/foundation/autorelease_pool.h"
#include "platform/macos/foundation/text_impl.h"

namespace platform {

std::string operatingSystemVersionString() {
  const AutoreleasePool pool;
  return utf8Of([[NSProcessInfo processInfo] operatingSystemVersionString]);
}

}  // namespace platform

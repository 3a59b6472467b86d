#include "platform/interface_style.h"

#import <Cocoa/Cocoa.h>

#include "platform/macos/foundation/autorelease_pool.h"
#include "platform/macos/foundation/text_impl.h"

namespace platform {

// Returns PropertyList::Null for a value that is not a string.
std::optional<PropertyList> interfaceStyle() {
  const AutoreleasePool pool;
  NSDictionary* domain = [[NSUserDefaults standardUserDefaults] persistentDomainForName:NSGlobalDomain];
  id value = [domain objectForKey:@"AppleInterfaceStyle"];
  if (value == nil) return std::nullopt;
  if (![value isKindOfClass:[NSString class]]) return PropertyList(PropertyList::Null());
  return PropertyList(utf8Of(static_cast<NSString*>(value)));
}

}  // namespace platform

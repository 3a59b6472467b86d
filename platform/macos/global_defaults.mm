#include "platform/global_defaults.h"

#import <Cocoa/Cocoa.h>

#include "platform/macos/autorelease_pool.h"
#include "platform/macos/text_impl.h"

namespace platform {

// Values other than texts are told to be there, and no more.
std::optional<PropertyList> globalDefault(std::string_view key) {
  const AutoreleasePool pool;
  NSDictionary* domain = [[NSUserDefaults standardUserDefaults] persistentDomainForName:NSGlobalDomain];
  id value = [domain objectForKey:textOf(key)];
  if (value == nil) return std::nullopt;
  if (![value isKindOfClass:[NSString class]]) return PropertyList(PropertyList::Null());
  return PropertyList(utf8Of(static_cast<NSString*>(value)));
}

}  // namespace platform

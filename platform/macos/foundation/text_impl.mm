#include "platform/macos/foundation/text_impl.h"

#include <iterator>
#include <utf8.h>

namespace platform {
namespace {

NSString* decoded(std::string_view utf8Text) {
  return [[[NSString alloc] initWithBytes:utf8Text.data()
                                   length:utf8Text.size()
                                 encoding:NSUTF8StringEncoding] autorelease];
}

}  // namespace

NSString* textOf(std::string_view text) {
  if (utf8::is_valid(text.begin(), text.end())) return decoded(text);
  std::string valid;
  utf8::replace_invalid(text.begin(), text.end(), std::back_inserter(valid));
  return decoded(valid);
}

std::string utf8Of(NSString* text) {
  const char* bytes = [text UTF8String];
  return bytes == nullptr ? std::string() : std::string(bytes);
}

NSFont* systemFont(Font font) {
  return font.bold ? [NSFont boldSystemFontOfSize:font.size] : [NSFont systemFontOfSize:font.size];
}

NSTextAlignment textAlignment(TextAlignment alignment) {
  return alignment == TextAlignment::Center ? NSTextAlignmentCenter : NSTextAlignmentLeft;
}

}  // namespace platform

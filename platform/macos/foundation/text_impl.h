#pragma once

#import <Cocoa/Cocoa.h>

#include <string>
#include <string_view>

#include "platform/text_style.h"

namespace platform {

// Converts UTF-8 to an autoreleased NSString, never nil. Replaces invalid UTF-8 by U+FFFD. Any thread with an
// autorelease pool.
[[nodiscard]] NSString* textOf(std::string_view text);

// Converts to UTF-8. Returns "" for nil.
[[nodiscard]] std::string utf8Of(NSString* text);

[[nodiscard]] NSFont* systemFont(Font font);

[[nodiscard]] NSTextAlignment textAlignment(TextAlignment alignment);

}  // namespace platform

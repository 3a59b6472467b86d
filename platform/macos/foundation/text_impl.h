#pragma once

#import <Cocoa/Cocoa.h>

#include <string>
#include <string_view>

#include "platform/text_style.h"

namespace platform {

// The text, autoreleased; never nil. What is no UTF-8 becomes U+FFFD. Any thread with an autorelease pool.
[[nodiscard]] NSString* textOf(std::string_view text);

// Empty for nil.
[[nodiscard]] std::string utf8Of(NSString* text);

[[nodiscard]] NSFont* systemFont(Font font);

[[nodiscard]] NSTextAlignment textAlignment(TextAlignment alignment);

}  // namespace platform

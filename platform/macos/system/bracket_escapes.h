#pragma once

#include <string>
#include <string_view>

namespace platform {

// Returns the URL with "[" and "]" after the authority replaced by "%5B" and "%5D". RFC 3986 allows brackets
// only around the host's IP address. Since macOS 14, NSURL escapes a text with other brackets itself and with
// them each "%" that is part of an escape. Thread-safe.
[[nodiscard]] std::string withEscapedBrackets(std::string_view url);

}  // namespace platform

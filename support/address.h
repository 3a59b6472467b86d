#pragma once

#include <string_view>

// Checks of addresses received from the server. Pure functions; thread-safe.

// Returns whether `text` is not empty and consists only of characters that RFC 3986, section 2, allows in a
// URI, with complete percent escapes.
[[nodiscard]] bool isAddress(std::string_view text);

// Returns whether `text` may be opened by the desktop: an absolute URL with "http" or "https" and a host.
// Handlers of other schemes mount shares, attach files to mails or start local programs, and some handlers
// treat a text without "//" as a file name.
[[nodiscard]] bool isLink(std::string_view text);

#pragma once

#include <string_view>

// What the server may name as an address. Pure; any thread.

// Whether `text` has only characters that may stand in an address, and whole percent escapes (RFC 3986,
// section 2). An empty one is none.
[[nodiscard]] bool isAddress(std::string_view text);

// Whether the desktop may be asked to open `text`: an address with a scheme, and with another one than that
// of files, which would let a server start what lies on this machine.
[[nodiscard]] bool isLink(std::string_view text);

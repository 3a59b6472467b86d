#pragma once

#include <string_view>

// What the server may name as an address. Pure; any thread.

// Whether `text` has only characters that may stand in an address, and whole percent escapes (RFC 3986,
// section 2). An empty one is none.
[[nodiscard]] bool isAddress(std::string_view text);

// Whether the desktop may be asked to open `text`: a whole address of the web, with "http" or "https" and a
// host. Handlers of other schemes mount shares, attach files to mails or start what lies on this machine, and
// a text without "//" is a file's name to some of them.
[[nodiscard]] bool isLink(std::string_view text);

#pragma once

#include <cstddef>
#include <span>
#include <string>

// The installation's identifier is the 36 characters of a UUID, in the file TovalinUUID.txt of the
// application directory, without line end.
inline constexpr std::size_t uuidTextLength = 36;

// A fresh identifier. Any thread.
[[nodiscard]] std::string CreateUUID();

// Puts the installation's identifier into `buffer`, which must hold at least 37 zero bytes; those behind the
// identifier stay as they are. A missing file, or one of any other size than 36 bytes, is replaced by a new
// identifier; 36 bytes of any content are kept. What goes wrong stands on the error log, and leaves the
// buffer untouched. Any thread.
void GetTovalinUUID(std::span<char> buffer);

#pragma once

#include <cstddef>
#include <span>
#include <string>

// The installation's identifier is a UUID, stored as 36 characters without a line end in TovalinUUID.txt in
// the application directory.
inline constexpr std::size_t uuidTextLength = 36;

// Returns a new random identifier. Thread-safe.
[[nodiscard]] std::string CreateUUID();

// Copies the installation's identifier into `buffer`, which must hold at least 37 zero bytes; bytes after the
// identifier stay unchanged. A missing file, or one with a size other than 36 bytes, is replaced by a new
// identifier; the content of 36 bytes is not checked. Errors go to the error log and leave `buffer`
// unchanged. Thread-safe.
void GetTovalinUUID(std::span<char> buffer);

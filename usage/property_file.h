#pragma once

#include <cstdint>

// Reads the switch `key` from the main application's property file, Contents/TovalinPorperty.plist in its
// bundle (spelled so by its installer), into `value` as 0 or 1.
//
// Returns 0 when the file was read; `value` is left as it was when the key isn't there, or is no boolean.
// Returns -1, with the failing step in the system log, when the file can't be read or holds no dictionary.
// Any thread.
[[nodiscard]] std::int32_t GetProperty(const char* key, std::uint32_t& value);

#pragma once

#include <cstdint>

// Reads the switch `key` from the main application's property file, Contents/TovalinPorperty.plist in its
// bundle (the installer's spelling), into `value` as 0 or 1.
//
// Returns 0 if the file was read; `value` is unchanged if the key is missing or not a boolean. Returns -1 and
// logs the failed step to the system log if the file cannot be read or is not a dictionary. Thread-safe.
[[nodiscard]] std::int32_t GetProperty(const char* key, std::uint32_t& value);

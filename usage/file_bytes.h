#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/file_descriptor.h"

// Whole small files: settings, identities, and days of usage that wait to be sent. Any thread.

// Opens for reading; never waits, whatever stands at the path, and follows no link there. Not valid on
// failure, with errno set.
[[nodiscard]] platform::FileDescriptor openForReading(const std::string& path);

// The size in bytes, 0 for what has none; nothing when it can't be told, with errno set.
[[nodiscard]] std::optional<std::size_t> sizeOf(const platform::FileDescriptor& file);

// The size of the file at the path, without opening it or following a link there; nothing when there is none.
// Leaves errno as it is.
[[nodiscard]] std::optional<std::size_t> sizeOfFileAt(const std::string& path);

// Fills all of `bytes` from where the file stands. False when there are fewer.
[[nodiscard]] bool readWhole(const platform::FileDescriptor& file, std::span<char> bytes);

// Makes the file, or empties the one that is there, but never what a link there leads to, and writes `text`.
// On failure to make it: "create file failed" on the error log, and false.
[[nodiscard]] bool writeNewFile(const std::string& path, std::string_view text);

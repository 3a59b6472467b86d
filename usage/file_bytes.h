#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/file_descriptor.h"

// Reading and writing whole small files: settings, identifiers and finished usage files. Thread-safe.

// Opens the file for reading without blocking on a FIFO or following a symbolic link at `path`. Returns an
// invalid descriptor and sets errno on failure.
[[nodiscard]] platform::FileDescriptor openForReading(const std::string& path);

// Returns the size in bytes; 0 for files without a size, such as FIFOs. Returns nullopt and sets errno if
// fstat(2) fails.
[[nodiscard]] std::optional<std::size_t> sizeOf(const platform::FileDescriptor& file);

// Returns the size of the regular file at `path` without opening it. Returns nullopt if there is none; a
// symbolic link does not count. Preserves errno.
[[nodiscard]] std::optional<std::size_t> sizeOfFileAt(const std::string& path);

// Reads until `bytes` is full. Returns false if the file ends or fails before.
[[nodiscard]] bool readWhole(const platform::FileDescriptor& file, std::span<char> bytes);

// Creates or truncates the file at `path` and writes `text`. Does not follow a symbolic link at `path`. If
// the file cannot be opened, writes "create file failed" to the error log and returns false.
[[nodiscard]] bool writeNewFile(const std::string& path, std::string_view text);

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

// The maximum size of a usage file to upload, in bytes. Bounds the agent's memory.
inline constexpr std::size_t maxUploadSize = std::size_t{256} << 20;

// Returns the names in the folder that end with ".dat", in directory order; an empty list if the folder
// cannot be read. Thread-safe.
[[nodiscard]] std::vector<std::string> uploadCandidates(const std::string& folder);

// Returns the bytes of a file. Returns nullopt if it is not a regular file, cannot be read completely, or
// exceeds `maxUploadSize`. Never blocks on a FIFO. Thread-safe.
[[nodiscard]] std::optional<std::string> contentsOfFile(const std::string& path);

// A file that the server has received.
struct SentFile {
  std::string path;
  std::size_t size;  // when it was sent
};

// Deletes the file unless it has grown since it was sent, because the server lacks the new records. Errors
// are ignored; the file is then sent again. Thread-safe.
void removeSentFile(const SentFile& file);

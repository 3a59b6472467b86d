#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

// A past file beyond this many bytes is not read: the agent's memory stays bounded.
inline constexpr std::size_t largestUpload = std::size_t{256} << 20;

// The names in the folder that end with ".dat", in the order in which the system lists them; none when it
// can't be listed. Any thread.
[[nodiscard]] std::vector<std::string> uploadCandidates(const std::string& folder);

// The bytes of a file, held once; nothing when it is no regular file, can't be read whole, or is too large.
// Never waits for whoever holds another end of it. Any thread.
[[nodiscard]] std::optional<std::string> contentsOfFile(const std::string& path);

// A file that the server has.
struct SentFile {
  std::string path;
  std::size_t size;  // of what was sent
};

// Deletes it, unless it has grown since, or may have: what was added is not on the server yet. Failure is
// ignored; the file is then sent again. Any thread.
void removeSentFile(const SentFile& file);

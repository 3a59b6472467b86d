#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace platform {

// Identifies a file uniquely, even after its inode number has been reused: the birth time differs then. The
// birth time is zero on file systems that do not record it.
struct FileIdentity {
  std::uint64_t device = 0;
  std::uint64_t number = 0;
  std::int64_t birthSeconds = 0;
  std::uint32_t birthNanoseconds = 0;

  bool operator==(const FileIdentity&) const = default;
};

// Returns whether this errno means that no file exists at a path (ENOENT, ENOTDIR, ELOOP, ESTALE), rather
// than that its existence is unknown. Thread-safe.
[[nodiscard]] bool meansNotFound(int error);

// Returns the identity of the folder at `path`, following links. Returns nullopt, with errno set, if there is
// none. Thread-safe.
[[nodiscard]] std::optional<FileIdentity> folderAt(const std::string& path);

// Returns whether `path` leads to `folder`. Returns nullopt if that cannot be determined, for example EACCES
// on a parent folder. Thread-safe.
[[nodiscard]] std::optional<bool> leadsTo(const std::string& path, const FileIdentity& folder);

}  // namespace platform

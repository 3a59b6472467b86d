#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace platform {

// What tells one file from all others, also from a later one that was given its number again: file systems
// reuse the numbers of files that are gone, but not the moment of their making. That is zero where a file
// system doesn't keep it.
struct FileIdentity {
  std::uint64_t device = 0;
  std::uint64_t number = 0;
  std::int64_t madeSeconds = 0;
  std::uint32_t madeNanoseconds = 0;

  bool operator==(const FileIdentity&) const = default;
};

// Whether this errno says of a path that nothing is there, rather than that it can't be found out. Any
// thread.
[[nodiscard]] bool saysThereIsNone(int error);

// The folder to which `path` leads, over links too; nothing when there is none. Any thread.
[[nodiscard]] std::optional<FileIdentity> folderAt(const std::string& path);

// Whether `path` leads to this folder; nothing where that can't be found out, as behind a folder that may not
// be entered. Any thread.
[[nodiscard]] std::optional<bool> leadsTo(const std::string& path, const FileIdentity& folder);

}  // namespace platform

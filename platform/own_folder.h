#pragma once

namespace platform {

// Returns whether `path` is a folder, not a symbolic link, that belongs to this user and is not writable by
// others. Thread-safe.
[[nodiscard]] bool isOwnFolder(const char* path);

}  // namespace platform

#pragma once

#include <sys/stat.h>
#include <unistd.h>

namespace platform {

// Returns whether `path` is a folder, not a symbolic link, that belongs to this user and is not writable by
// others. Thread-safe.
[[nodiscard]] inline bool isOwnFolder(const char* path) {
  struct stat status {};
  return ::lstat(path, &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid() &&
         (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

}  // namespace platform

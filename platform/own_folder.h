#pragma once

#include <sys/stat.h>
#include <unistd.h>

namespace platform {

// Whether `path` is a folder, and no link to one, that belongs to this user and that no other user may write
// to. Any thread.
[[nodiscard]] inline bool isOwnFolder(const char* path) {
  struct stat status {};
  return ::lstat(path, &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid() &&
         (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

}  // namespace platform

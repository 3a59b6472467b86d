#include "platform/own_folder.h"

#include <sys/stat.h>
#include <unistd.h>

namespace platform {

bool isOwnFolder(const char* path) {
  struct stat status {};
  return ::lstat(path, &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid() &&
         (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

}  // namespace platform

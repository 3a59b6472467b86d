#include "support/updater_folder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "platform/log.h"

namespace {

bool isOwnAlone(const char* path) {
  struct stat status {};
  return ::lstat(path, &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid() &&
         (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

}  // namespace

bool claimUpdaterFolder() {
  if (::mkdir(updaterFolder, S_IRWXU) == 0) return true;
  // No room, or a disk that can't be written: the copy itself fails, and harms nobody.
  if (errno != EEXIST || isOwnAlone(updaterFolder)) return true;
  platform::systemLog(platform::LogPriority::Error,
                      std::string("updater's folder is not this user's alone : ") + updaterFolder);
  return false;
}

void dropEmptyUpdaterFolder() {
  ::rmdir(updaterFolder);
}

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
  const int error = ::mkdir(updaterFolder, S_IRWXU) == 0 ? 0 : errno;
  if (error == 0 || isOwnAlone(updaterFolder)) return true;
  // What isn't there now may be put there by somebody else before the copy begins.
  const std::string what = error == EEXIST
                               ? "updater's folder is not this user's alone : " + std::string(updaterFolder)
                               : "updater's folder can't be made. errno : " + std::to_string(error);
  platform::systemLog(platform::LogPriority::Error, what);
  return false;
}

void dropEmptyUpdaterFolder() {
  ::rmdir(updaterFolder);
}

#include "support/updater_folder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "platform/log.h"
#include "platform/own_folder.h"

bool claimUpdaterFolder() {
  const int error = ::mkdir(updaterFolder, S_IRWXU) == 0 ? 0 : errno;
  if (error == 0 || platform::isOwnFolder(updaterFolder)) return true;
  // A folder that does not exist could be created by another user before the copy begins.
  const std::string what =
      error == EEXIST
          ? "updater's folder belongs to or is writable by other users : " + std::string(updaterFolder)
          : "updater's folder cannot be created. errno : " + std::to_string(error);
  platform::systemLog(platform::LogPriority::Error, what);
  return false;
}

void dropEmptyUpdaterFolder() {
  ::rmdir(updaterFolder);
}

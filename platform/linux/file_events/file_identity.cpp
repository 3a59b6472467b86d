#include "platform/linux/file_events/file_identity.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <cerrno>

namespace platform {

bool meansNotFound(int error) {
  return error == ENOENT || error == ENOTDIR || error == ELOOP || error == ESTALE;
}

std::optional<FileIdentity> folderAt(const std::string& path) {
  struct statx status {};
  if (::statx(AT_FDCWD, path.c_str(), AT_NO_AUTOMOUNT, STATX_TYPE | STATX_INO | STATX_BTIME, &status) != 0)
    return std::nullopt;
  if (!S_ISDIR(status.stx_mode)) {
    errno = ENOTDIR;
    return std::nullopt;
  }
  FileIdentity identity{.device = ::makedev(status.stx_dev_major, status.stx_dev_minor),
                        .number = status.stx_ino};
  if ((status.stx_mask & STATX_BTIME) == 0) return identity;
  identity.birthSeconds = status.stx_btime.tv_sec;
  identity.birthNanoseconds = status.stx_btime.tv_nsec;
  return identity;
}

std::optional<bool> leadsTo(const std::string& path, const FileIdentity& folder) {
  if (const auto found = folderAt(path)) return *found == folder;
  return meansNotFound(errno) ? std::optional(false) : std::nullopt;
}

}  // namespace platform

#include "platform/reopen.h"

#include <fcntl.h>
#include <sys/param.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>

namespace platform {
namespace {

bool isSameFile(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

}  // namespace

// By the file's path, since /dev/fd gives a duplicate with the same access. Looked at before it is opened,
// because opening a device may have effects of its own, and once more on what was opened.
FileDescriptor reopen(int descriptor, int flags) {
  std::array<char, MAXPATHLEN> path{};
  struct stat own {}, found {};
  if (::fstat(descriptor, &own) != 0 || ::fcntl(descriptor, F_GETPATH, path.data()) == -1) return {};
  if (::lstat(path.data(), &found) != 0) return {};
  errno = ENOENT;
  if (!isSameFile(own, found)) return {};
  FileDescriptor again(::open(path.data(), flags | O_CLOEXEC | O_NOFOLLOW));
  if (!again.valid() || ::fstat(again.get(), &found) != 0) return {};
  errno = ENOENT;
  if (!isSameFile(own, found)) return {};
  return again;
}

}  // namespace platform

#include "platform/descriptors.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/param.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <memory>

namespace platform {
namespace {

bool isSameFile(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

struct CloseFolder {
  void operator()(DIR* folder) const { ::closedir(folder); }
};

}  // namespace

// Opens the file by its path, because opening /dev/fd/N only duplicates the descriptor with its access mode.
// Compares device and inode before opening, since opening a device can have side effects, and again on the
// opened file.
FileDescriptor reopen(int descriptor, int flags) {
  std::array<char, MAXPATHLEN> path{};
  struct stat own {
  }, found{};
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

FileDescriptor openSocket(int domain, int type, int protocol) {
  FileDescriptor descriptor(::socket(domain, type, protocol));
  if (descriptor.valid()) ::fcntl(descriptor.get(), F_SETFD, FD_CLOEXEC);
  return descriptor;
}

std::optional<int> unacknowledgedBytes(int socket) {
  int bytes = 0;
  socklen_t size = sizeof bytes;
  if (::getsockopt(socket, SOL_SOCKET, SO_NWRITE, &bytes, &size) != 0) return std::nullopt;
  return bytes;
}

// macOS has no spawn file action for a range of descriptors. Marks all open descriptors from `first` on as
// close-on-exec in this process instead.
void closeDescriptorsFrom(int first, posix_spawn_file_actions_t& actions) {
  static_cast<void>(actions);
  const std::unique_ptr<DIR, CloseFolder> folder(::opendir("/dev/fd"));
  if (folder == nullptr) return;
  // This DIR is local to the function, so readdir is safe.
  // cppcheck-suppress readdirCalled
  while (const dirent* entry = ::readdir(folder.get())) {
    const int descriptor = std::atoi(entry->d_name);
    if (descriptor >= first) ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
  }
}

}  // namespace platform

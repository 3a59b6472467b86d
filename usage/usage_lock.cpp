#include "usage/usage_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

using namespace std::chrono_literals;

namespace {

constexpr auto maxWait = 1s;
constexpr auto pauseBetweenTries = 1ms;

// Returns false if another writer held the lock until the end of `maxWait`. Polls with LOCK_NB, because
// flock(2) has no timeout. On a file system without locks (ENOLCK), proceeds as if locked.
bool waitForLock(int descriptor) {
  const auto end = std::chrono::steady_clock::now() + maxWait;
  while (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK && errno != EINTR) return true;
    if (std::chrono::steady_clock::now() >= end) {
      errno = EWOULDBLOCK;
      return false;
    }
    std::this_thread::sleep_for(pauseBetweenTries);
  }
  return true;
}

platform::FileDescriptor openLockFile(const std::string& path) {
  constexpr int flags = O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW;
  return platform::FileDescriptor(::open(path.c_str(), flags, S_IRUSR | S_IWUSR));
}

// Returns whether no other user can have opened the file. Another user may have created it while the folder
// was writable for others, or may reach it through a hard link.
bool isPrivateFile(int descriptor) {
  struct stat status {};
  return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == ::geteuid() &&
         (status.st_mode & (S_IRWXG | S_IRWXO)) == 0 && status.st_nlink == 1;
}

}  // namespace

platform::FileDescriptor lockUsageFiles(const std::string& folder) {
  const std::string path = folder + "/TovalinUsage.lock";
  auto file = openLockFile(path);
  const bool isForeign = file.valid() ? !isPrivateFile(file.get()) : errno == ELOOP;
  if (isForeign) {
    ::unlink(path.c_str());
    file = openLockFile(path);
  }
  if (!file.valid()) return {};
  if (!isPrivateFile(file.get())) {
    errno = EPERM;
    return {};
  }
  if (!waitForLock(file.get())) return {};
  return file;
}

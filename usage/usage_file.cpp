#include "usage/usage_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

#include "platform/log.h"

using namespace std::chrono_literals;

namespace {

constexpr auto longestWait = 1s;
constexpr auto pauseBetweenTries = 1ms;

// Keeps other writers of an empty file, and other repairs, away until the descriptor is closed. Asked for
// without waiting and again later, because a lock that is waited for may never come.
void lock(int descriptor) {
  const auto end = std::chrono::steady_clock::now() + longestWait;
  while (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
    const bool mayComeFree = errno == EWOULDBLOCK || errno == EINTR;
    if (!mayComeFree || std::chrono::steady_clock::now() >= end) return;
    std::this_thread::sleep_for(pauseBetweenTries);
  }
}

// Takes away the `torn` bytes that the last write has left, unless more stands behind them by now.
void cutBack(int descriptor, off_t torn) {
  lock(descriptor);
  const off_t end = ::lseek(descriptor, 0, SEEK_CUR);
  struct stat status {};
  if (::fstat(descriptor, &status) != 0 || status.st_size != end) return;
  [[maybe_unused]] const int result = ::ftruncate(descriptor, end - torn);
}

}  // namespace

std::optional<UsageFile> UsageFile::open(const std::string& path) {
  // Not waiting for the other end of a pipe that somebody put there.
  constexpr int flags = O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  platform::FileDescriptor descriptor(::open(path.c_str(), flags, 0666));
  if (!descriptor.valid()) return std::nullopt;
  const off_t length = ::lseek(descriptor.get(), 0, SEEK_END);
  if (length == -1) return std::nullopt;
  if (length > 0) return UsageFile(std::move(descriptor), false);

  lock(descriptor.get());
  struct stat status {};
  if (::fstat(descriptor.get(), &status) != 0) return std::nullopt;
  if (!S_ISREG(status.st_mode)) {
    errno = EINVAL;
    return std::nullopt;
  }
  return UsageFile(std::move(descriptor), status.st_size == 0);
}

bool UsageFile::append(std::string_view bytes) {
  ssize_t written = -1;
  do written = ::write(descriptor_.get(), bytes.data(), bytes.size());
  while (written == -1 && errno == EINTR);
  if (written == static_cast<ssize_t>(bytes.size())) return true;
  if (written >= 0) errno = ENOSPC;
  platform::errorLog("write log failed");
  if (written > 0) cutBack(descriptor_.get(), written);
  return false;
}

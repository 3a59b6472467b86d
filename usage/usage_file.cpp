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

// A lock that is asked for without waiting and again later, because one that is waited for has no end.
bool lock(int descriptor) {
  const auto end = std::chrono::steady_clock::now() + longestWait;
  while (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
    const bool mayComeFree = errno == EWOULDBLOCK || errno == EINTR;
    if (!mayComeFree || std::chrono::steady_clock::now() >= end) return false;
    std::this_thread::sleep_for(pauseBetweenTries);
  }
  return true;
}

}  // namespace

std::optional<UsageFile> UsageFile::open(const std::string& path) {
  // Not waiting for the other end of a pipe that somebody put there.
  constexpr int flags = O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  platform::FileDescriptor descriptor(::open(path.c_str(), flags, 0666));
  if (!descriptor.valid()) return std::nullopt;
  const bool locked = lock(descriptor.get());
  struct stat status {};
  if (::fstat(descriptor.get(), &status) != 0) return std::nullopt;
  if (!S_ISREG(status.st_mode)) {
    errno = EINVAL;
    return std::nullopt;
  }
  return UsageFile(std::move(descriptor), status.st_size, locked);
}

bool UsageFile::append(std::string_view bytes) {
  ssize_t written = -1;
  do written = ::write(descriptor_.get(), bytes.data(), bytes.size());
  while (written == -1 && errno == EINTR);
  if (written == static_cast<ssize_t>(bytes.size())) {
    length_ += written;
    return true;
  }
  if (written >= 0) errno = ENOSPC;
  platform::errorLog("write log failed");
  // Only the one who holds the lock knows that what stands behind is his own.
  if (written <= 0 || !locked_) return false;
  [[maybe_unused]] const int result = ::ftruncate(descriptor_.get(), length_);
  return false;
}

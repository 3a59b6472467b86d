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

// False when somebody else held the file all the time. Asked for without waiting and again later, because a
// lock that is waited for may never come; a disk without locks has no other writers to be told.
bool hold(int descriptor) {
  const auto end = std::chrono::steady_clock::now() + longestWait;
  while (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK && errno != EINTR) return true;
    if (std::chrono::steady_clock::now() >= end) return false;
    std::this_thread::sleep_for(pauseBetweenTries);
  }
  return true;
}

bool isRegular(int descriptor) {
  struct stat status {};
  return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

std::optional<UsageFile> UsageFile::open(const std::string& path) {
  // Not waiting for the other end of a pipe that somebody put there, nor following a link to another file.
  constexpr int flags = O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW;
  platform::FileDescriptor descriptor(::open(path.c_str(), flags, 0666));
  if (!descriptor.valid()) return std::nullopt;
  const bool held = hold(descriptor.get());
  const off_t length = ::lseek(descriptor.get(), 0, SEEK_END);
  if (length == -1) return std::nullopt;
  // What belongs at the beginning is written once, so only by the one who holds the file.
  if (length == 0 && !held) {
    errno = EWOULDBLOCK;
    return std::nullopt;
  }
  // Devices measure nothing, too.
  if (length == 0 && !isRegular(descriptor.get())) {
    errno = EINVAL;
    return std::nullopt;
  }
  return UsageFile(std::move(descriptor), length, held);
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
  // Only the one who holds the file knows that what stands behind is his own.
  if (written <= 0 || !held_) return false;
  [[maybe_unused]] const int result = ::ftruncate(descriptor_.get(), length_);
  return false;
}

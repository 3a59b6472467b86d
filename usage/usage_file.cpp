#include "usage/usage_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/log.h"
#include "usage/private_files.h"
#include "usage/usage_lock.h"

namespace {

bool isRegular(int descriptor) {
  struct stat status {};
  return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

std::optional<UsageFile> UsageFile::open(const std::string& path) {
  // Does not wait for the other end of a FIFO and does not follow a symbolic link, either of which another
  // user may have put there.
  constexpr int flags = O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW;
  platform::FileDescriptor descriptor(::open(path.c_str(), flags, S_IRUSR | S_IWUSR));
  if (!descriptor.valid()) return std::nullopt;
  makePrivate(descriptor);
  platform::FileDescriptor lock = lockUsageFiles(path.substr(0, path.rfind('/')));
  const int lockError = errno;
  const off_t length = ::lseek(descriptor.get(), 0, SEEK_END);
  if (length == -1) return std::nullopt;
  // The header must be written only once, so an empty file is opened only with the lock.
  if (length == 0 && !lock.valid()) {
    errno = lockError;
    return std::nullopt;
  }
  // The length of a device is 0, too.
  if (length == 0 && !isRegular(descriptor.get())) {
    errno = EINVAL;
    return std::nullopt;
  }
  return UsageFile(std::move(descriptor), std::move(lock), length);
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
  // Without the lock, bytes after this write may belong to another writer, so the file is not truncated.
  if (written <= 0 || !lock_.valid()) return false;
  [[maybe_unused]] const int result = ::ftruncate(descriptor_.get(), length_);
  return false;
}

#include "usage/file_bytes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/log.h"
#include "usage/private_files.h"

platform::FileDescriptor openForReading(const std::string& path) {
  return platform::FileDescriptor(
      ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW));
}

std::optional<std::size_t> sizeOf(const platform::FileDescriptor& file) {
  struct stat status {};
  if (::fstat(file.get(), &status) != 0) return std::nullopt;
  return static_cast<std::size_t>(status.st_size);
}

std::optional<std::size_t> sizeOfFileAt(const std::string& path) {
  const int before = errno;
  struct stat status {};
  const bool isFile = ::lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
  errno = before;
  if (!isFile) return std::nullopt;
  return static_cast<std::size_t>(status.st_size);
}

bool readWhole(const platform::FileDescriptor& file, std::span<char> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::read(file.get(), bytes.data(), bytes.size());
    if (count == -1 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return true;
}

bool writeNewFile(const std::string& path, std::string_view text) {
  constexpr int flags = O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW;
  const platform::FileDescriptor file(::open(path.c_str(), flags, S_IRUSR | S_IWUSR));
  if (!file.valid()) {
    platform::errorLog("create file failed");
    return false;
  }
  makePrivate(file);
  // A text this short is written completely or, on ENOSPC, not at all, which leaves an empty file.
  [[maybe_unused]] const ssize_t written = ::write(file.get(), text.data(), text.size());
  return true;
}

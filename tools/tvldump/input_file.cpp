#include "tools/tvldump/input_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "platform/file_descriptor.h"

namespace tools {
namespace {

constexpr std::size_t kStep = std::size_t{1} << 16;
constexpr const char* kTooLarge = "it exceeds the maximum size of a usage record file";

std::string reasonOf(int error) {
  return std::generic_category().message(error);
}

// Returns 0 for files without a size, such as pipes.
std::size_t sizeOf(int descriptor) {
  struct stat status {};
  const bool known = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0;
  return known ? static_cast<std::size_t>(status.st_size) : 0;
}

ssize_t readSome(int descriptor, char* place, std::size_t size) {
  ssize_t count = 0;
  do count = ::read(descriptor, place, size);
  while (count == -1 && errno == EINTR);
  return count;
}

std::nullopt_t refuse(std::string& reason, std::string text) {
  reason = std::move(text);
  return std::nullopt;
}

}  // namespace

std::optional<std::span<const char>> InputFile::read(const std::string& path, std::string& reason) {
  if (path == "-") return readAll(STDIN_FILENO, reason);
  const platform::FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
  if (file.valid()) return readAll(file.get(), reason);
  return refuse(reason, reasonOf(errno));
}

// Most files fit the buffer of the previous file, so their size is not queried.
std::optional<std::span<const char>> InputFile::readAll(int descriptor, std::string& reason) {
  if (size_ == 0) grow(kStep, 0);
  std::size_t filled = 0;
  ssize_t count = 0;
  while ((count = readSome(descriptor, bytes_.get() + filled, size_ - filled)) > 0) {
    filled += static_cast<std::size_t>(count);
    if (filled < size_) continue;
    const std::size_t whole = sizeOf(descriptor);
    if (std::max(filled, whole) > kMaxInput) return refuse(reason, kTooLarge);
    // One extra byte, so that the next read(2) detects the end of a file that does not grow.
    grow(std::max(whole + 1, filled * 2), filled);
  }
  if (count == -1) return refuse(reason, reasonOf(errno));
  if (filled > kMaxInput) return refuse(reason, kTooLarge);
  return std::span<const char>(bytes_.get(), filled);
}

void InputFile::grow(std::size_t size, std::size_t filled) {
  auto larger = std::make_unique_for_overwrite<char[]>(size);
  std::copy_n(bytes_.get(), filled, larger.get());
  bytes_ = std::move(larger);
  size_ = size;
}

}  // namespace tools

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
constexpr const char* kTooLarge = "it is larger than a usage record file ever is";

std::string reasonOf(int error) {
  return std::generic_category().message(error);
}

// 0 for what has no size before it is read.
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

std::optional<std::vector<char>> refuse(std::string& reason, std::string text) {
  reason = std::move(text);
  return std::nullopt;
}

std::optional<std::vector<char>> readAll(int descriptor, std::string& reason) {
  const std::size_t size = sizeOf(descriptor);
  if (size > kMostInput) return refuse(reason, kTooLarge);
  // One byte more, so that a file that does not grow meanwhile is read in one piece.
  std::vector<char> bytes(size + 1);
  std::size_t filled = 0;
  ssize_t count = 0;
  while ((count = readSome(descriptor, bytes.data() + filled, bytes.size() - filled)) > 0) {
    filled += static_cast<std::size_t>(count);
    if (filled > kMostInput) return refuse(reason, kTooLarge);
    if (filled == bytes.size()) bytes.resize(std::max(filled + kStep, filled * 2));
  }
  if (count == -1) return refuse(reason, reasonOf(errno));
  bytes.resize(filled);
  return bytes;
}

}  // namespace

std::optional<std::vector<char>> readInput(const std::string& path, std::string& reason) {
  if (path == "-") return readAll(STDIN_FILENO, reason);
  const platform::FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
  if (file.valid()) return readAll(file.get(), reason);
  reason = reasonOf(errno);
  return std::nullopt;
}

}  // namespace tools

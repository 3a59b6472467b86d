#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utf8.h>

#include "platform/file_descriptor.h"
#include "platform/property_list.h"

namespace platform {
namespace {

bool isValidPath(const std::string& path) {
  return !path.empty() && path.size() < PATH_MAX && path.find('\0') == std::string::npos &&
         utf8::is_valid(path.begin(), path.end());
}

// Reads at most one byte beyond the bound, which proves that the file is too large, however much it grows
// meanwhile.
std::optional<std::vector<std::byte>> readAll(const FileDescriptor& file, std::size_t expected) {
  constexpr std::size_t maxBytes = propertyListMaxBytes + 1;
  std::vector<std::byte> content(std::min(expected + 1, maxBytes));
  std::size_t used = 0;
  for (;;) {
    const ssize_t count = ::read(file.get(), content.data() + used, content.size() - used);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return std::nullopt;
    used += static_cast<std::size_t>(count);
    if (count == 0 || used == maxBytes) break;
    if (used == content.size()) content.resize(std::min(2 * used, maxBytes));
  }
  content.resize(used);
  return content;
}

}  // namespace

std::variant<PropertyList, PropertyListError> readPropertyListFile(const std::string& path) {
  if (!isValidPath(path)) return PropertyListError::BadPath;

  // Checked before opening, because opening a device can have side effects, and again on the open descriptor.
  struct stat status {};
  if (::stat(path.c_str(), &status) == -1) return PropertyListError::OpenFailed;
  if (!S_ISREG(status.st_mode)) return PropertyListError::NoStream;

  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  if (!file.valid() || ::fstat(file.get(), &status) == -1) return PropertyListError::OpenFailed;
  if (!S_ISREG(status.st_mode)) return PropertyListError::NoStream;

  if (static_cast<std::uintmax_t>(status.st_size) > propertyListMaxBytes)
    return PropertyListError::Unreadable;
  const auto content = readAll(file, static_cast<std::size_t>(status.st_size));
  if (!content) return PropertyListError::Unreadable;
  auto list = parsePropertyList(*content);
  if (!list) return PropertyListError::Unreadable;
  return std::move(*list);
}

}  // namespace platform

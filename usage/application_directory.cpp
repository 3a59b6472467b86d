#include "usage/application_directory.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <system_error>

#include "platform/search_path.h"
#include "usage/private_files.h"

namespace {

std::optional<std::string> applicationPath() {
  auto path = platform::applicationSupportDirectory();
  if (path) path->append("/Tovalin");  // frozen: doc/compatibility.md
  return path;
}

// Only a link of the user's own is followed: the user may have moved the folder, but another user's link
// could lead to any of the user's folders.
bool isLinkOwnedByUser(const std::string& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode) && status.st_uid == ::geteuid();
}

}  // namespace

std::optional<std::string> applicationDirectory() {
  auto path = applicationPath();
  if (!path) return std::nullopt;
  const std::filesystem::path folder(*path);
  std::error_code error;
  std::filesystem::create_directories(folder.parent_path(), error);
  if (::mkdir(path->c_str(), S_IRWXU) != 0 && !std::filesystem::is_directory(folder, error))
    return std::nullopt;
  makeFolderPrivate(isLinkOwnedByUser(*path) ? std::filesystem::canonical(folder, error).string() : *path);
  return path;
}

std::optional<std::string> applicationFile(std::string_view name) {
  auto path = applicationPath();
  if (!path) return std::nullopt;
  path->reserve(path->size() + 1 + name.size());
  path->append("/").append(name);
  return path;
}

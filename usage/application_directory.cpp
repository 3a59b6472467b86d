#include "usage/application_directory.h"

#include <filesystem>
#include <system_error>

#include "platform/search_path.h"

namespace {

std::optional<std::string> applicationPath() {
  auto path = platform::applicationSupportDirectory();
  if (path) path->append("/Tovalin");
  return path;
}

}  // namespace

std::optional<std::string> applicationDirectory() {
  auto path = applicationPath();
  if (!path) return std::nullopt;
  std::error_code error;
  std::filesystem::create_directories(*path, error);
  if (error) return std::nullopt;
  return path;
}

std::optional<std::string> applicationFile(std::string_view name) {
  auto path = applicationPath();
  if (!path) return std::nullopt;
  path->reserve(path->size() + 1 + name.size());
  path->append("/").append(name);
  return path;
}

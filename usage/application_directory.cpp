#include "usage/application_directory.h"

#include <filesystem>
#include <system_error>

#include "platform/search_path.h"

namespace {

std::optional<std::string> applicationPath() {
  const auto support = platform::applicationSupportDirectory();
  if (!support) return std::nullopt;
  return *support + "/Tovalin";
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
  const auto path = applicationPath();
  if (!path) return std::nullopt;
  return *path + "/" + std::string(name);
}

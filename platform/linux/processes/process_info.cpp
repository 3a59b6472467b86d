#include "platform/process_info.h"

#include <fstream>

#include "platform/linux/processes/os_release.h"

namespace platform {
namespace {

std::string unquoted(std::string_view text) {
  if (text.size() < 2 || (text.front() != '"' && text.front() != '\'') || text.back() != text.front()) {
    return std::string(text);
  }
  std::string plain;
  for (std::size_t i = 1; i + 1 < text.size(); ++i) {
    if (text[i] == '\\' && i + 2 < text.size()) ++i;
    plain += text[i];
  }
  return plain;
}

}  // namespace

std::optional<std::string> osReleaseValue(std::istream& file, std::string_view key) {
  for (std::string line; std::getline(file, line);) {
    const std::string_view text = line;
    if (text.starts_with(key) && text.substr(key.size()).starts_with('='))
      return unquoted(text.substr(key.size() + 1));
  }
  return std::nullopt;
}

std::string operatingSystemVersionString() {
  for (const char* path : {"/etc/os-release", "/usr/lib/os-release"}) {
    std::ifstream file(path);
    if (const auto version = osReleaseValue(file, "VERSION")) return "Version " + *version;
  }
  return "";
}

}  // namespace platform

#include "tools/productserver/served_folder.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <system_error>

namespace tools {

namespace fs = std::filesystem;

std::optional<ServedFolder> ServedFolder::at(const std::string& path) {
  std::error_code error;
  const fs::path root = fs::canonical(path, error);
  if (error || !fs::is_directory(root, error)) return std::nullopt;
  return ServedFolder(root);
}

std::optional<std::string> ServedFolder::read(const std::string& requestPath) const {
  if (requestPath.find('\0') != std::string::npos) return std::nullopt;
  std::error_code error;
  const fs::path file = fs::canonical(root_.string() + "/" + requestPath, error);
  if (error || !holds(file) || !fs::is_regular_file(file, error)) return std::nullopt;
  std::ifstream stream(file, std::ios::binary);
  if (!stream) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(stream), {});
}

bool ServedFolder::holds(const fs::path& resolved) const {
  return std::mismatch(root_.begin(), root_.end(), resolved.begin(), resolved.end()).first == root_.end();
}

}  // namespace tools

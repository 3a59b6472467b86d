#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace test_support {

// Returns the contents of the file at `path`; empty if it does not exist or cannot be read, such as a file in
// /proc of a process that has ended.
[[nodiscard]] inline std::string contentsOf(const std::filesystem::path& path) {
  std::ostringstream contents;
  contents << std::ifstream(path, std::ios::binary).rdbuf();
  return contents.str();
}

}  // namespace test_support

#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace test_support {

// All that stands in the file at `path`; empty where there is none or it can't be read, as of a process that
// has just ended.
[[nodiscard]] inline std::string contentsOf(const std::filesystem::path& path) {
  std::ostringstream contents;
  contents << std::ifstream(path, std::ios::binary).rdbuf();
  return contents.str();
}

}  // namespace test_support

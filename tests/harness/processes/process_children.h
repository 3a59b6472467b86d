#pragma once

#include <sys/types.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <vector>

namespace test_support {

// Returns the children of all threads of the process, including zombies; empty if the process is gone.
[[nodiscard]] inline std::vector<pid_t> childrenOf(pid_t parent) {
  std::vector<pid_t> children;
  std::error_code gone;
  for (const auto& thread :
       std::filesystem::directory_iterator("/proc/" + std::to_string(parent) + "/task", gone)) {
    std::ifstream list(thread.path() / "children");
    for (pid_t child = 0; list >> child;) children.push_back(child);
  }
  return children;
}

}  // namespace test_support

#include "tests/bench/process_tree.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace bench {
namespace {

// The children that each of the process's threads has made.
std::vector<pid_t> childrenOf(pid_t parent) {
  std::vector<pid_t> children;
  std::error_code gone;
  for (const auto& thread :
       std::filesystem::directory_iterator("/proc/" + std::to_string(parent) + "/task", gone)) {
    std::ifstream list(thread.path() / "children");
    for (pid_t child = 0; list >> child;) children.push_back(child);
  }
  return children;
}

}  // namespace

std::vector<pid_t> processTree(pid_t root) {
  std::vector<pid_t> tree{root};
  for (std::size_t i = 0; i < tree.size(); ++i) {
    const std::vector<pid_t> children = childrenOf(tree[i]);
    tree.insert(tree.end(), children.begin(), children.end());
  }
  return tree;
}

Memory memoryOf(const std::vector<pid_t>& tree) {
  Memory memory;
  for (const pid_t pid : tree) {
    std::ifstream rollup("/proc/" + std::to_string(pid) + "/smaps_rollup");
    std::string line;
    std::getline(rollup, line);
    std::string name;
    std::string unit;
    for (double kibibytes = 0; rollup >> name >> kibibytes >> unit;) {
      if (name == "Pss:") memory.proportional += kibibytes;
      if (name == "Private_Dirty:") memory.own += kibibytes;
    }
  }
  return memory;
}

Work workOf(const std::vector<pid_t>& tree) {
  Work work;
  for (const pid_t pid : tree) {
    for (const auto& thread : std::filesystem::directory_iterator("/proc/" + std::to_string(pid) + "/task")) {
      double nanoseconds = 0;
      std::ifstream(thread.path() / "schedstat") >> nanoseconds;
      work.processor += std::chrono::duration<double, std::nano>(nanoseconds);
      std::ifstream status(thread.path() / "status");
      for (std::string line; std::getline(status, line);) {
        if (line.starts_with("voluntary_ctxt_switches:")) work.wakeUps += std::stod(line.substr(24));
      }
    }
  }
  return work;
}

}  // namespace bench

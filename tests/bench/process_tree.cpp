#include "tests/bench/process_tree.h"

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/harness/processes/process_children.h"

namespace bench {

std::vector<pid_t> processTree(pid_t root) {
  std::vector<pid_t> tree{root};
  for (std::size_t i = 0; i < tree.size(); ++i) {
    const std::vector<pid_t> children = test_support::childrenOf(tree[i]);
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

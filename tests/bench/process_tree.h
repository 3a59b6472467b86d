#pragma once

#include <sys/types.h>

#include <chrono>
#include <vector>

namespace bench {

// Returns a process and all its descendants.
[[nodiscard]] std::vector<pid_t> processTree(pid_t root);

// Memory in KiB.
struct Memory {
  double proportional = 0;  // Pss: shared pages counted in proportion
  double own = 0;           // Private_Dirty: pages written by the processes
};

// Returns the sum over all processes of a tree.
[[nodiscard]] Memory memoryOf(const std::vector<pid_t>& tree);

// The work of processes since their start.
struct Work {
  double wakeUps = 0;  // voluntary context switches
  std::chrono::duration<double> processor = {};
};

// Returns the sum over all threads of all processes of a tree.
[[nodiscard]] Work workOf(const std::vector<pid_t>& tree);

}  // namespace bench

#pragma once

#include <sys/types.h>

#include <chrono>
#include <vector>

namespace bench {

// A process, its children, their children, and so on.
[[nodiscard]] std::vector<pid_t> processTree(pid_t root);

// Memory in KiB.
struct Memory {
  double proportional = 0;  // what is shared with other programs counted in part (Pss)
  double own = 0;           // written by the processes themselves, so that nobody can share it
};

// Of all processes of a tree together.
[[nodiscard]] Memory memoryOf(const std::vector<pid_t>& tree);

// What the processes have done since their starts.
struct Work {
  double wakeUps = 0;  // how often a thread came back from waiting
  std::chrono::duration<double> processor = {};
};

// Of all threads of all processes of a tree together.
[[nodiscard]] Work workOf(const std::vector<pid_t>& tree);

}  // namespace bench

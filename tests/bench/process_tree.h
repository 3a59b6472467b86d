#pragma once

#include <sys/types.h>

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

}  // namespace bench

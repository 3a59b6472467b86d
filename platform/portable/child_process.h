#pragma once

#include <sys/types.h>
#include <sys/wait.h>

#include <cerrno>
#include <string>
#include <vector>

namespace platform {

// Returns the argument format of execve(2), with nullptr at the end. The pointers point into `texts`.
inline std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

// Waits for the child to end. Returns its wait status, or -1 on error.
inline int waitStatusOf(pid_t child) {
  int status = 0;
  while (::waitpid(child, &status, 0) == -1) {
    if (errno != EINTR) return -1;
  }
  return status;
}

}  // namespace platform

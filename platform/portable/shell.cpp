#include "platform/shell.h"

#include "platform/portable/child_run.h"

namespace platform {

int system(const std::string& command) {
  return runAndWait("/bin/sh", {"sh", "-c", command});
}

std::optional<int> system(const std::string& command, std::chrono::milliseconds limit) {
  return runWithLimit("/bin/sh", {"sh", "-c", command}, limit);
}

}  // namespace platform

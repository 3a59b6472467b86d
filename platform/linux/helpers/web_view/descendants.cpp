#include "platform/linux/helpers/web_view/descendants.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/types.h>
#include <sys/wait.h>

#include <filesystem>
#include <fstream>
#include <system_error>
#include <vector>

namespace helpers {
namespace {

std::vector<pid_t> children() {
  std::vector<pid_t> found;
  std::error_code ignored;
  for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task", ignored)) {
    std::ifstream list(thread.path() / "children");
    for (pid_t child = 0; list >> child;) found.push_back(child);
  }
  return found;
}

}  // namespace

void adoptDescendants() {
  ::prctl(PR_SET_CHILD_SUBREAPER, 1);
}

void endDescendants() {
  // Orphans of the killed processes are found in the next iteration.
  for (auto found = children(); !found.empty(); found = children()) {
    for (const pid_t child : found) ::kill(child, SIGKILL);
    for (const pid_t child : found) ::waitpid(child, nullptr, 0);
  }
}

}  // namespace helpers

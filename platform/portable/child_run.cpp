#include "platform/portable/child_run.h"

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <thread>
#include <utility>

#include "platform/helper_folder.h"
#include "platform/portable/child_process.h"
#include "platform/portable/spawn_attributes.h"

// POSIX leaves the declaration to the program; glibc declares it as an extension.
extern char** environ;  // NOLINT(readability-redundant-declaration)

namespace platform {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds pollInterval = 10ms;
// How long to wait for a process after SIGKILL. A process blocked on an unreachable network file system may
// not end before that, if ever.
constexpr std::chrono::milliseconds killTimeout = 1s;

// The agent's environment with the folders of the helper programs at the front of PATH. Helpers restore
// TOVALIN_ORIGINAL_PATH as PATH for the programs they start.
std::vector<std::string> environmentWithHelpers() {
  std::vector<std::string> environment;
  std::string originalPath = "/usr/local/bin:/usr/bin:/bin";
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string_view text = *entry;
    if (text.starts_with("PATH=")) {
      originalPath = text.substr(5);
    } else if (!text.starts_with("TOVALIN_ORIGINAL_PATH=")) {
      environment.emplace_back(text);
    }
  }
  std::string path = "PATH=";
  for (const std::string& folder : helperFolders()) {
    if (folder.find(':') == std::string::npos) path.append(folder).append(":");
  }
  environment.push_back(path + originalPath);
  environment.push_back("TOVALIN_ORIGINAL_PATH=" + originalPath);
  return environment;
}

// Returns the wait status of `child`; nullopt if it is still running at the deadline. Polls, because a pidfd
// needs a free descriptor and the limit must hold even after EMFILE.
std::optional<int> waitUntil(Clock::time_point deadline, pid_t child) {
  for (;;) {
    int status = 0;
    const pid_t ended = ::waitpid(child, &status, WNOHANG);
    if (ended == child) return status;
    if (ended == -1 && errno != EINTR) return -1;
    if (Clock::now() >= deadline) return std::nullopt;
    std::this_thread::sleep_for(pollInterval);
  }
}

std::optional<pid_t> start(const std::string& program, std::vector<std::string> arguments,
                           const SpawnAttributes& attributes) {
  std::vector<std::string> environment = environmentWithHelpers();
  SpawnStreams inherited;
  pid_t child = 0;
  const int error = posix_spawn(&child, program.c_str(), inherited.get(), attributes.get(),
                                pointersTo(arguments).data(), pointersTo(environment).data());
  return error == 0 ? std::optional(child) : std::nullopt;
}

}  // namespace

int runAndWait(const std::string& program, std::vector<std::string> arguments) {
  const auto child = start(program, std::move(arguments), SpawnAttributes());
  return child ? waitStatusOf(*child) : -1;
}

std::optional<int> runWithLimit(const std::string& program, std::vector<std::string> arguments,
                                std::chrono::milliseconds limit) {
  const auto deadline = Clock::now() + limit;
  const auto child = start(program, std::move(arguments), SpawnAttributes(POSIX_SPAWN_SETPGROUP));
  if (!child) return -1;
  if (const auto status = waitUntil(deadline, *child)) return status;
  // The child has not been reaped, so its process group ID has not been reused.
  ::kill(-*child, SIGKILL);
  waitUntil(Clock::now() + killTimeout, *child);
  return std::nullopt;
}

}  // namespace platform

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <variant>

#include "platform/linux/helpers/helper_program.h"
#include "platform/linux/helpers/unload_request.h"
#include "platform/linux/processes/pidfd.h"

namespace {

using namespace std::chrono_literals;

constexpr char usage[] =
    "Usage: launchctl unload [-w] [-F] /Library/LaunchAgents/LABEL.plist\n"
    "\n"
    "Asks the program that the session has started from the autostart entry LABEL.desktop to end.\n"
    "Succeeds without effect if no such program runs. Ignores the options.\n";

constexpr std::chrono::milliseconds killTimeout = 1s;

bool outlasts(pid_t child, std::chrono::milliseconds limit) {
  const platform::FileDescriptor handle = platform::openPidfd(child);
  pollfd end{handle.get(), POLLIN, 0};
  return handle.valid() && ::poll(&end, 1, static_cast<int>(limit.count())) == 0;
}

// Signals only the main process: the unit's control group also contains the browser and the web view that it
// started.
void signalMainProcess(const std::string& unit) {
  const helpers::Child child = helpers::startDetached(
      {"systemctl", "--user", "kill", "--kill-whom=main", "-s", "TERM", unit}, helpers::Output::Discarded);
  if (child.error != 0) return;
  if (outlasts(child.pid, killTimeout)) ::kill(-child.pid, SIGKILL);
}

}  // namespace

int main(int argc, char** argv) {
  helpers::prepareEnvironment();
  const auto request = helpers::parseUnloadRequest({argv + 1, argv + argc});
  if (std::holds_alternative<helpers::ShowUsage>(request)) return helpers::showUsage(usage);
  if (const auto* refusal = std::get_if<helpers::Refusal>(&request)) {
    return helpers::refuse("launchctl", refusal->reason);
  }
  signalMainProcess(helpers::autostartUnit(std::get<helpers::UnloadRequest>(request).label));
  return helpers::Done;
}

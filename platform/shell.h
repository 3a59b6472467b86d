#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace platform {

// Runs `command` with the shell (/bin/sh -c) and waits for its end, as system(3) does. Returns the wait
// status; -1 when no shell could be started.
//
// The agent's own helper programs are found before all others by their bare names, also when the bundle they
// came in is gone. The command gets the environment the agent was started with, default signals and no
// descriptor but 0 to 2. Any thread; blocks it for as long as the command runs and serves no events
// meanwhile.
int system(const std::string& command);

// The same in a process group of its own, for `limit` at most: whatever of the group still runs then is ended
// by SIGKILL. Returns nullopt if it came to that, up to a second after the limit. A process that has left the
// group stays.
std::optional<int> system(const std::string& command, std::chrono::milliseconds limit);

}  // namespace platform

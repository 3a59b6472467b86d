#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace platform {

// Runs `command` with /bin/sh -c and waits for it, like system(3). Returns the wait status, or -1 if the
// shell could not be started. Thread-safe; blocks the caller without running its run loop.
//
// PATH begins with the agent's helper programs, which are found even after the bundle was removed. The
// command otherwise gets the environment the agent was started with, default signal handling, and no
// descriptors but 0 to 2.
int system(const std::string& command);

// The same in a process group of its own and for at most `limit`. Then kills the group with SIGKILL and
// returns nullopt, at the latest one second after the limit. A process that has left the group is not killed.
std::optional<int> system(const std::string& command, std::chrono::milliseconds limit);

}  // namespace platform

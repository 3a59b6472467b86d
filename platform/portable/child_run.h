#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace platform {

// Runs `program`, a path, with `arguments` (the first one its name) and waits for its end. Returns the wait
// status; -1 when it could not be started. It finds the agent's helper programs first on its PATH, and gets
// default signals and no descriptor but 0 to 2. Any thread.
int runAndWait(const std::string& program, std::vector<std::string> arguments);

// The same in a process group of its own, which is ended by SIGKILL at `limit`. Returns nullopt then; a
// process that not even SIGKILL ends within a second is left to itself.
std::optional<int> runWithLimit(const std::string& program, std::vector<std::string> arguments,
                                std::chrono::milliseconds limit);

}  // namespace platform

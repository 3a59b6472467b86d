#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace platform {

// Runs the program at the path `program` with `arguments` (including argv[0]) and waits for it. Returns the
// wait status; -1 if it could not be started. The child's PATH begins with the agent's helper programs; the
// child gets default signal handling and no descriptors but 0 to 2. Thread-safe.
int runAndWait(const std::string& program, std::vector<std::string> arguments);

// The same, but in a process group of its own, which is killed with SIGKILL at `limit`. Returns nullopt in
// that case. Does not wait longer than one second for a process that SIGKILL does not end.
std::optional<int> runWithLimit(const std::string& program, std::vector<std::string> arguments,
                                std::chrono::milliseconds limit);

}  // namespace platform

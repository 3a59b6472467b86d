#pragma once

#include <string>
#include <vector>

namespace platform {

// Runs `program`, a path, with `arguments` (the first one its name) and waits for its end. Returns the wait
// status; -1 when it could not be started. It finds the agent's helper programs first on its PATH, and gets
// default signals and no descriptor but 0 to 2. Any thread.
int runAndWait(const std::string& program, std::vector<std::string> arguments);

}  // namespace platform

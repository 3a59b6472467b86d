#pragma once

#include <string>
#include <vector>

namespace platform {

// The folders in which the agent's helper programs are found by name, the first one first: the copies, which
// outlive the bundle, in the private folder, or in the one below /tmp if the file system of the private one
// lets no program run; then the bundle's own. Any thread.
[[nodiscard]] std::vector<std::string> helperFolders();

// Copies the helper programs of the running bundle, because some must still run when the bundle is gone. What
// can't be copied is left out.
void installHelpers();
// Takes the copies away again.
void removeHelpers();

}  // namespace platform

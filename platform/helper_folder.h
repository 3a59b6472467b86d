#pragma once

#include <string>
#include <vector>

namespace platform {

// Returns the folders in which the agent's helper programs are searched, in order. The first holds the
// copies, which remain available after the bundle is removed: a folder in the private folder or, if that file
// system is mounted noexec, below /tmp. The second is the bundle's own. Thread-safe.
[[nodiscard]] std::vector<std::string> helperFolders();

// Copies the helper programs of the running bundle, because some must still run after the bundle is removed.
// Logs an error for each program that cannot be copied and leaves it out; the web view's helper may be
// missing.
void installHelpers();
// Removes the copies.
void removeHelpers();

}  // namespace platform

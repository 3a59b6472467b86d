#pragma once

#include <optional>
#include <string>

namespace platform {

// Where the agent's helper programs are found by name: a folder in the private one, or in the one below /tmp
// where the file system of the private one lets no program run. Returns nullopt if there is none. Any thread.
[[nodiscard]] std::optional<std::string> helperFolder();

// Copies the helper programs of the running bundle to helperFolder(), because some must still run when the
// bundle is gone. What can't be copied is left out.
void installHelpers();
// Takes the copies away again.
void removeHelpers();

}  // namespace platform

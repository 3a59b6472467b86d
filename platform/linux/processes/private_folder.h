#pragma once

#include <optional>
#include <string>

namespace platform {

// The folder for what lives as long as the agent's process: below $XDG_RUNTIME_DIR, else below
// /run/user/UID, else below /tmp with the user's id in its name. Made when missing, and then readable by the
// user alone; nothing when it can't be had or somebody else could write to it. Any thread.
[[nodiscard]] std::optional<std::string> privateFolder();

// Where it is, or would be.
[[nodiscard]] std::string privateFolderPath();
// The one below /tmp, also where another place comes first.
[[nodiscard]] std::optional<std::string> privateFolderBelowTmp();

}  // namespace platform

#pragma once

#include <optional>
#include <string>

namespace platform {

// Returns the folder for files that exist only while the agent runs: TovalinTray in $XDG_RUNTIME_DIR or in
// /run/user/UID, else /tmp/TovalinTray-UID. Creates it with mode 0700 if it does not exist. Returns nullopt
// if it cannot be created, is not owned by this user, or is writable by others. Thread-safe.
[[nodiscard]] std::optional<std::string> privateFolder();

// Returns the path of that folder, whether or not it exists. Thread-safe.
[[nodiscard]] std::string privateFolderPath();
// Returns the folder below /tmp, under the same conditions, even if another location takes precedence.
// Thread-safe.
[[nodiscard]] std::optional<std::string> privateFolderInTmp();

}  // namespace platform

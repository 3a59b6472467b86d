#pragma once

#include <optional>
#include <string>

namespace platform {

// Returns the folder for this user's program files ("Application Support"), which need not exist. Returns
// nullopt if the user has no such folder. Thread-safe.
[[nodiscard]] std::optional<std::string> applicationSupportDirectory();

}  // namespace platform

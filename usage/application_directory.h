#pragma once

#include <optional>
#include <string>
#include <string_view>

// Returns the folder "Tovalin" in the user's folder for program files. Creates it and its parents if missing.
// Removes other users' access to it and to the agent's files in it, as far as they belong to the user.
// Returns nullopt if there is no such folder or it cannot be created. Thread-safe.
[[nodiscard]] std::optional<std::string> applicationDirectory();

// Returns the path of the file `name` in that folder, without creating the folder. Returns nullopt if the
// user has no folder for program files. Thread-safe.
[[nodiscard]] std::optional<std::string> applicationFile(std::string_view name);

#pragma once

#include <optional>
#include <string>
#include <string_view>

// The folder of this user's files of the product, "Tovalin" in the system's place for such. Made with the
// folders above it when missing. It and the agent's files in it are made private to the user, where they are
// not and are the user's own. Returns nullopt if there is no such place or it can't be made. Any thread.
[[nodiscard]] std::optional<std::string> applicationDirectory();

// Where the file `name` stands in that folder, without making the folder; nothing when there is no place for
// it. Any thread.
[[nodiscard]] std::optional<std::string> applicationFile(std::string_view name);

#pragma once

#include <optional>
#include <string>

namespace platform {

// The folder below which programs keep their files for this user ("Application Support"); nothing when the
// user has no such place. It need not exist. Any thread.
[[nodiscard]] std::optional<std::string> applicationSupportDirectory();

}  // namespace platform

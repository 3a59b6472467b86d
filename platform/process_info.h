#pragma once

#include <string>

namespace platform {

// Returns the system's release for display: "Version", a space and the release, as in "Version 12
// (bookworm)". Returns an empty text if the system does not provide it. Thread-safe.
[[nodiscard]] std::string operatingSystemVersionString();

}  // namespace platform

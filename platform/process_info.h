#pragma once

#include <string>

namespace platform {

// The system's release as text for people: the word Version, a blank and the release, as in "Version 12
// (bookworm)". Empty when the system doesn't tell. Any thread.
[[nodiscard]] std::string operatingSystemVersionString();

}  // namespace platform

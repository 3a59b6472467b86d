#pragma once

namespace platform {

// A path at which no user, not even root, can create a folder.
inline constexpr const char* nowhere = "/proc/nowhere";

}  // namespace platform

#pragma once

#include <optional>
#include <string_view>

#include "platform/property_list.h"

namespace platform {

// The value that the user's desktop-wide settings hold for `key`; nothing when there is none or the desktop
// does not answer. "AppleInterfaceStyle" is the string "Dark" in the dark appearance and absent in the light
// one. Main thread; may block it for half a second.
[[nodiscard]] std::optional<PropertyList> globalDefault(std::string_view key);

}  // namespace platform

#pragma once

#include <optional>

#include "platform/property_list.h"

namespace platform {

// Returns the user's setting "AppleInterfaceStyle": the text "Dark" for the dark appearance. Returns nullopt
// for the light one, and if the desktop does not answer. Main thread only; may block for up to half a second.
[[nodiscard]] std::optional<PropertyList> interfaceStyle();

}  // namespace platform

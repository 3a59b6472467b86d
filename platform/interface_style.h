#pragma once

#include <optional>

#include "platform/property_list.h"

namespace platform {

// The user's setting "AppleInterfaceStyle": the text "Dark" in the dark appearance. Returns nullopt in the
// light one, and if the desktop does not answer. Main thread; may block it for half a second.
[[nodiscard]] std::optional<PropertyList> interfaceStyle();

}  // namespace platform

#pragma once

#include <string_view>

namespace platform {

// Returns whether the texts are equal, ignoring the case of the letters A to Z. Independent of the locale.
// Thread-safe.
[[nodiscard]] bool equalIgnoringCase(std::string_view one, std::string_view other);

}  // namespace platform

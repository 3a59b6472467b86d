#pragma once

#include <istream>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

// The value of `key` in a file of os-release(5), quotes and escapes taken off; nothing when the key isn't
// there.
[[nodiscard]] std::optional<std::string> osReleaseValue(std::istream& file, std::string_view key);

}  // namespace platform

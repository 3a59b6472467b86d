#pragma once

#include <istream>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

// Returns the value of `key` in a file of os-release(5), without quotes and escapes; nullopt if there is no
// such key. Thread-safe for distinct streams.
[[nodiscard]] std::optional<std::string> osReleaseValue(std::istream& file, std::string_view key);

}  // namespace platform

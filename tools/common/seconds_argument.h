#pragma once

#include <chrono>
#include <optional>
#include <string_view>

namespace tools {

// Parses a command-line time in seconds, with or without decimals, as in "10" or "0.5"; at most 1,000,000 s,
// rounded to milliseconds. Returns nullopt if it is invalid.
[[nodiscard]] std::optional<std::chrono::milliseconds> secondsArgument(std::string_view text);

}  // namespace tools

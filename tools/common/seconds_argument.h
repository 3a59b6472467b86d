#pragma once

#include <chrono>
#include <optional>
#include <string_view>

namespace tools {

// A time given on a command line in seconds, with or without decimals, as in "10" or "0.5"; up to 1,000,000
// s, rounded to the millisecond. Nothing when it is no such number.
[[nodiscard]] std::optional<std::chrono::milliseconds> secondsArgument(std::string_view text);

}  // namespace tools

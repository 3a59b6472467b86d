#pragma once

#include <chrono>
#include <string>

namespace tools {

// Returns the local time of day with milliseconds, as in "14:03:07.123". Thread-safe.
[[nodiscard]] std::string clockText(std::chrono::system_clock::time_point time);

}  // namespace tools

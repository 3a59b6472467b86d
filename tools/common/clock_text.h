#pragma once

#include <chrono>
#include <string>

namespace tools {

// The local time of day to the millisecond, as in "14:03:07.123". Any thread.
[[nodiscard]] std::string clockText(std::chrono::system_clock::time_point time);

}  // namespace tools

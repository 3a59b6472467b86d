#pragma once

#include <ctime>

namespace platform {

// The wall clock, broken down in the local time zone, to the second. All zero when the system can't break it
// down (a year beyond its integers). Any thread.
[[nodiscard]] std::tm currentLocalTime();

}  // namespace platform

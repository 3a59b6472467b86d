#pragma once

#include <ctime>

namespace platform {

// The wall clock, broken down in the local time zone, to the second. All zero when the system can't break it
// down (a year beyond its integers). Any thread.
[[nodiscard]] std::tm currentLocalTime();

// Has the clock follow when the system's time zone has been changed since the start. Costs a look at the
// system's file. Any thread.
void noticeTimeZone();

}  // namespace platform

#pragma once

#include <ctime>

namespace platform {

// Returns the wall-clock time in the local time zone, to the second. Returns all zeros if localtime_r(3)
// fails (EOVERFLOW). Thread-safe.
[[nodiscard]] std::tm currentLocalTime();

// Calls tzset(3), so that later calls use a system time zone that was changed since the start. Checks the
// system's time zone file. Thread-safe.
void noticeTimeZone();

}  // namespace platform

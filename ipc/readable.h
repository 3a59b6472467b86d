#pragma once

#include <chrono>

// Waits with select(2) until `descriptor` is readable or until `limit`, less than one second, has passed.
// Returns the number of ready descriptors, 0 or 1; or -1 with errno set, EINVAL for a descriptor of
// FD_SETSIZE or more. Thread-safe.
[[nodiscard]] int waitUntilReadable(int descriptor, std::chrono::microseconds limit);

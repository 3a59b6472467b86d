#pragma once

#include <chrono>

// Waits with select(2) until `descriptor` can be read without waiting, or until `limit`, less than a second,
// has passed. Returns the number of descriptors that are ready, 0 or 1; or -1 with errno set, EINVAL for a
// descriptor beyond what select(2) can name. Any thread.
[[nodiscard]] int waitUntilReadable(int descriptor, std::chrono::microseconds limit);

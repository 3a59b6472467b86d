#pragma once

#include <chrono>

enum class Readiness { Readable, TimedOut, Failed };

// Waits with select(2) until `descriptor` is readable or until `limit`, less than one second, has passed.
// Returns Failed with errno set on error: EINVAL for a descriptor of FD_SETSIZE or more. Thread-safe.
[[nodiscard]] Readiness waitUntilReadable(int descriptor, std::chrono::microseconds limit);

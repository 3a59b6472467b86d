#pragma once

#include <chrono>

// Waits with select(2) until `descriptor` is readable or until `limit`, less than one second, has passed.
// If it failed, errno is set: EINVAL for a descriptor of FD_SETSIZE or more. Thread-safe.
enum class Readiness { Readable, TimedOut, Failed };
[[nodiscard]] Readiness waitUntilReadable(int descriptor, std::chrono::microseconds limit);

#pragma once

#include <chrono>
#include <thread>

namespace test_support {

// How long a test waits for something that is bound to happen; generous, because it is only used up by a
// failure.
inline constexpr std::chrono::seconds kPatience{20};

// Asks every few milliseconds until `predicate` holds. False when it did not within `timeout`; a predicate
// that holds at once is asked once, whatever the timeout.
template <typename Predicate>
[[nodiscard]] bool waitUntil(Predicate predicate, std::chrono::milliseconds timeout = kPatience) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  while (!predicate()) {
    if (std::chrono::steady_clock::now() >= deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return true;
}

}  // namespace test_support

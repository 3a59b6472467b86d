#pragma once

#include <chrono>
#include <thread>

namespace test_support {

// The timeout for events that must happen. Generous, because only a failing test waits that long.
inline constexpr std::chrono::seconds kPatience{20};

// Evaluates `predicate` every few milliseconds until it returns true. Returns false at the timeout. Evaluates
// it at least once, whatever the timeout.
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

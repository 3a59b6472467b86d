#pragma once

#include <chrono>

// For the lifetime of the object, nanosleep() returns immediately and steady_clock advances only by the
// requested pauses. No other code that waits by that clock may run at the same time.
class FakeWaits {
 public:
  FakeWaits();
  FakeWaits(const FakeWaits&) = delete;
  FakeWaits& operator=(const FakeWaits&) = delete;
  ~FakeWaits();

  // Returns the sum of the pauses requested so far.
  [[nodiscard]] std::chrono::nanoseconds waited() const;
};

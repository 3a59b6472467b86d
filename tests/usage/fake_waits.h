#pragma once

#include <chrono>

// While one lives, pauses of this process return at once, and its monotonic clock stands still but for what
// the pauses asked for. Nothing else that waits by that clock may run meanwhile.
class FakeWaits {
 public:
  FakeWaits();
  FakeWaits(const FakeWaits&) = delete;
  FakeWaits& operator=(const FakeWaits&) = delete;
  ~FakeWaits();

  // The pauses asked for so far.
  [[nodiscard]] std::chrono::nanoseconds waited() const;
};

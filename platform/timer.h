#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace platform {

// Fires again and again on the main thread's run loop, in modal runs too. Main thread only.
//
// Every tick is due a whole number of intervals after the timer was made and never comes early; one that
// comes late, because the thread was busy, moves none of those behind it. Ticks that were missed meanwhile
// come as one.
class Timer {
 public:
  // The first tick comes one interval from now. The timer lasts as long as somebody holds it; an `action`
  // that drops it runs to its end.
  [[nodiscard]] static std::shared_ptr<Timer> scheduledTimer(std::chrono::milliseconds interval,
                                                             std::function<void()> action);
  ~Timer();
  Timer(const Timer&) = delete;
  Timer& operator=(const Timer&) = delete;

  // No tick comes from now on.
  void invalidate();

 private:
  struct Impl;
  explicit Timer(std::unique_ptr<Impl> impl);
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform

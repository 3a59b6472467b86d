#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace platform {

// A repeating timer on the main thread's run loop, which also fires during modal runs. Main thread only.
//
// Each tick is due a whole number of intervals after the creation and never fires early. A late tick does not
// delay the later ones. Ticks missed while the thread was busy are delivered as one.
class Timer {
 public:
  // Starts a timer whose first tick is due after one interval. The timer runs while a reference to it exists.
  // An `action` that releases the last reference still completes.
  [[nodiscard]] static std::shared_ptr<Timer> scheduledTimer(std::chrono::milliseconds interval,
                                                             std::function<void()> action);
  ~Timer();
  Timer(const Timer&) = delete;
  Timer& operator=(const Timer&) = delete;

  // Stops the timer. No tick is delivered after this call.
  void invalidate();

 private:
  struct Impl;
  explicit Timer(std::unique_ptr<Impl> impl);
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform

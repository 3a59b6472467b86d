#pragma once

#include <signal.h>

#include <atomic>
#include <functional>
#include <thread>

namespace tools {

// Handles SIGINT and SIGTERM for the whole program. Calls `onStop` at the first signal, on a thread of its
// own and not in a signal handler; ignores later signals. Create it before any other thread, because threads
// inherit the signal mask and an unmasked thread would be terminated by the default action. Both signals stay
// blocked after destruction.
class StopSignals {
 public:
  explicit StopSignals(std::function<void()> onStop);
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;
  ~StopSignals();

 private:
  void wait(const std::function<void()>& onStop);

  sigset_t signals_{};
  std::atomic<bool> over_ = false;
  std::thread waiter_;
};

}  // namespace tools

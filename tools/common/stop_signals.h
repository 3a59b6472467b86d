#pragma once

#include <signal.h>

#include <atomic>
#include <functional>
#include <thread>

namespace tools {

// Takes SIGINT and SIGTERM for the whole program and calls `onStop` at the first of them, on a thread of its
// own, where everything may be called; later ones are dropped. Make it before the program's first thread,
// which would otherwise still take the signals in the default way. Both signals stay blocked when it goes
// away.
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

#include "tools/common/stop_signals.h"

#include <utility>

namespace tools {

StopSignals::StopSignals(std::function<void()> onStop) {
  sigemptyset(&signals_);
  sigaddset(&signals_, SIGINT);
  sigaddset(&signals_, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
  waiter_ = std::thread([this, call = std::move(onStop)] { wait(call); });
}

StopSignals::~StopSignals() {
  over_ = true;
  pthread_kill(waiter_.native_handle(), SIGINT);
  waiter_.join();
}

void StopSignals::wait(const std::function<void()>& onStop) {
  int number = 0;
  sigwait(&signals_, &number);
  if (!over_) onStop();
  while (!over_) sigwait(&signals_, &number);
}

}  // namespace tools

#include "platform/macos/application/termination_signals.h"

#include <signal.h>

#include <utility>

#include "platform/thread.h"

namespace platform {
namespace {

bool isIgnored(int number) {
  struct sigaction current {};
  return ::sigaction(number, nullptr, &current) == 0 && current.sa_handler == SIG_IGN;
}

sigset_t terminationSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
    if (number != SIGHUP || !isIgnored(number)) sigaddset(&signals, number);
  }
  return signals;
}

}  // namespace

// SIG_SETMASK, not SIG_BLOCK: the parent process may have blocked other signals.
void blockTerminationSignals() {
  const sigset_t signals = terminationSignals();
  ::sigprocmask(SIG_SETMASK, &signals, nullptr);
}

void handleTerminationSignals(std::function<void()> ended) {
  detachNewThread([ended = std::move(ended), signals = terminationSignals()] {
    for (int number = 0;;) {
      if (::sigwait(&signals, &number) == 0) ended();
    }
  });
}

}  // namespace platform

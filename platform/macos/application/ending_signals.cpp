#include "platform/macos/application/ending_signals.h"

#include <signal.h>

#include <utility>

#include "platform/thread.h"

namespace platform {
namespace {

bool isIgnored(int number) {
  struct sigaction current {};
  return ::sigaction(number, nullptr, &current) == 0 && current.sa_handler == SIG_IGN;
}

sigset_t endingSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
    if (number != SIGHUP || !isIgnored(number)) sigaddset(&signals, number);
  }
  return signals;
}

}  // namespace

// SIG_SETMASK, not SIG_BLOCK: the parent process may have blocked other signals.
void blockEndingSignals() {
  const sigset_t signals = endingSignals();
  ::sigprocmask(SIG_SETMASK, &signals, nullptr);
}

void hearEndingSignals(std::function<void()> ended) {
  detachNewThread([ended = std::move(ended), signals = endingSignals()] {
    for (int number = 0;;) {
      if (::sigwait(&signals, &number) == 0) ended();
    }
  });
}

}  // namespace platform

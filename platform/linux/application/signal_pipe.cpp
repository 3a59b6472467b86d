#include "platform/linux/application/signal_pipe.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "platform/log.h"

namespace platform {
namespace {

constexpr int maxTries = 100;

// Global, because a signal handler receives no context.
volatile sig_atomic_t signalPipe = -1;

void writeByte(int) {
  const int error = errno;
  const char byte = 0;
  // EAGAIN means that the pipe is full, so a wake-up is already pending. Retry after any other error, such as
  // ENOMEM: the signal would be lost.
  for (int tries = 0; tries < maxTries; ++tries) {
    if (::write(static_cast<int>(signalPipe), &byte, 1) == 1 || errno == EAGAIN) break;
  }
  errno = error;
}

void handle(int number) {
  struct sigaction current {};
  // Preserve SIG_IGN for SIGHUP: nohup(1) sets it.
  if (number == SIGHUP && sigaction(number, nullptr, &current) == 0 && current.sa_handler == SIG_IGN) return;
  struct sigaction action {};
  action.sa_handler = writeByte;
  action.sa_flags = SA_RESTART;
  // Without the handler, the default action would end the process without applicationWillTerminate.
  if (sigaction(number, &action, nullptr) != 0)
    fatalError(std::string("cannot install a signal handler: ") + std::strerror(errno));
}

}  // namespace

sigset_t terminationSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&signals, number);
  return signals;
}

SignalPipe::SignalPipe(std::function<void()> ended) {
  int ends[2] = {-1, -1};
  // These signals are still blocked here: a process without the pipe could be ended only with SIGKILL.
  if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
    fatalError(std::string("cannot create the signal pipe: ") + std::strerror(errno));
  readEnd_ = FileDescriptor(ends[0]);
  writeEnd_ = FileDescriptor(ends[1]);
  signalPipe = ends[1];

  notifier_ = std::make_unique<QSocketNotifier>(ends[0], QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                   [ended = std::move(ended)] { ended(); });

  for (const int number : {SIGTERM, SIGINT, SIGHUP}) handle(number);
  const sigset_t signals = terminationSignals();
  sigprocmask(SIG_UNBLOCK, &signals, nullptr);
}

}  // namespace platform

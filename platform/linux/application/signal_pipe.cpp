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

constexpr int mostTries = 100;

// A signal handler can reach nothing else.
volatile sig_atomic_t pipeForSignals = -1;

void writeByte(int) {
  const int error = errno;
  const char byte = 0;
  // A full pipe says it already; any other failure, the want of a page for one, would lose the signal.
  for (int tries = 0; tries < mostTries; ++tries) {
    if (::write(static_cast<int>(pipeForSignals), &byte, 1) == 1 || errno == EAGAIN) break;
  }
  errno = error;
}

void handle(int number) {
  struct sigaction current {};
  // Who starts a program with nohup(1) wants it to outlive the terminal.
  if (number == SIGHUP && sigaction(number, nullptr, &current) == 0 && current.sa_handler == SIG_IGN) return;
  struct sigaction action {};
  action.sa_handler = writeByte;
  action.sa_flags = SA_RESTART;
  // What the system does by itself at these signals is an end without its last steps.
  if (sigaction(number, &action, nullptr) != 0)
    fatalError(std::string("signals can't be heard: ") + std::strerror(errno));
}

}  // namespace

sigset_t endingSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&signals, number);
  return signals;
}

SignalPipe::SignalPipe(std::function<void()> ended) {
  int ends[2] = {-1, -1};
  // Until here the signals are held back: without the pipe the process could only be killed.
  if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
    fatalError(std::string("no pipe to hear of signals by: ") + std::strerror(errno));
  readEnd_ = FileDescriptor(ends[0]);
  writeEnd_ = FileDescriptor(ends[1]);
  pipeForSignals = ends[1];

  notifier_ = std::make_unique<QSocketNotifier>(ends[0], QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                   [ended = std::move(ended)] { ended(); });

  for (const int number : {SIGTERM, SIGINT, SIGHUP}) handle(number);
  const sigset_t signals = endingSignals();
  sigprocmask(SIG_UNBLOCK, &signals, nullptr);
}

}  // namespace platform

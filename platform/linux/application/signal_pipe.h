#pragma once

#include <signal.h>

#include <functional>
#include <memory>

#include <QSocketNotifier>

#include "platform/file_descriptor.h"

namespace platform {

// The signals that request the end of the program: SIGTERM, SIGINT and SIGHUP.
[[nodiscard]] sigset_t terminationSignals();

// Delivers the signals of terminationSignals() to the run loop with the self-pipe trick: the handler writes a
// byte to a pipe, and `ended` is called when the run loop reads it. The constructor unblocks the signals;
// SIGHUP stays ignored if it was. Ends the process with status 1 and a message if the pipe or a handler
// cannot be installed. Main thread only. Create one per process.
class SignalPipe {
 public:
  explicit SignalPipe(std::function<void()> ended);

 private:
  FileDescriptor readEnd_;
  FileDescriptor writeEnd_;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace platform

#pragma once

#include <signal.h>

#include <functional>
#include <memory>

#include <QSocketNotifier>

#include "platform/file_descriptor.h"

namespace platform {

// The signals that ask the program to end: SIGTERM, SIGINT and SIGHUP.
[[nodiscard]] sigset_t endingSignals();

// Brings the ending signals into the run loop (the self-pipe trick): the handler writes a byte, the run loop
// reads it when the main thread is free. Lets them through from here on, or ends the process with a message
// when there is no pipe to be had. One per process; main thread.
class SignalPipe {
 public:
  explicit SignalPipe(std::function<void()> ended);

 private:
  FileDescriptor readEnd_;
  FileDescriptor writeEnd_;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace platform

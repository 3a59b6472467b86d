#pragma once

#include <functional>
#include <memory>

#include <QSocketNotifier>

#include "platform/file_descriptor.h"

namespace platform {

// Brings SIGTERM, SIGINT and SIGHUP into the run loop (the self-pipe trick): the handler writes a byte, the
// run loop reads it when the main thread is free. One per process; main thread.
class SignalPipe {
 public:
  explicit SignalPipe(std::function<void()> ended);

 private:
  FileDescriptor readEnd_;
  FileDescriptor writeEnd_;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace platform

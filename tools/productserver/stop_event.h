#pragma once

#include <sys/eventfd.h>

#include "platform/file_descriptor.h"

namespace tools {

// Interrupts the waits of all connections: after `raise`, the descriptor stays readable. Thread-safe.
class StopEvent {
 public:
  [[nodiscard]] int descriptor() const { return descriptor_.get(); }
  void raise() const { ::eventfd_write(descriptor_.get(), 1); }

 private:
  platform::FileDescriptor descriptor_{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
};

}  // namespace tools

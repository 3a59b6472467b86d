#pragma once

#include <sys/eventfd.h>

#include "tests/harness/processes/file_descriptor.h"

namespace test_support {

// Ends another thread's poll(2). Once signalled, the descriptor stays readable.
class WakeEvent {
 public:
  [[nodiscard]] int fd() const { return fd_.get(); }
  void signal() const { ::eventfd_write(fd_.get(), 1); }

 private:
  FileDescriptor fd_{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
};

}  // namespace test_support

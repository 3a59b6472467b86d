#pragma once

#include "tests/harness/processes/file_descriptor.h"

namespace test_support {

// A listening socket on the loopback interface, at a port chosen by the kernel.
struct LoopbackListener {
  FileDescriptor socket;
  int port = 0;
};

// `receiveBuffer` is SO_RCVBUF in bytes; 0 keeps the kernel's default. Throws std::runtime_error on failure.
[[nodiscard]] LoopbackListener listenOnLoopback(int receiveBuffer = 0);

}  // namespace test_support

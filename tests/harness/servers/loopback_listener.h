#pragma once

#include "tests/harness/processes/file_descriptor.h"

namespace test_support {

// A socket that listens on the loopback, at a port of the kernel's choice.
struct LoopbackListener {
  FileDescriptor socket;
  int port = 0;
};

// `receiveBuffer` is the size in bytes of what its connections hold unread; 0 leaves it to the kernel. Throws
// std::runtime_error when there is no socket to be had.
[[nodiscard]] LoopbackListener listenOnLoopback(int receiveBuffer = 0);

}  // namespace test_support

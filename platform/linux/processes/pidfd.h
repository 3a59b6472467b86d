#pragma once

#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

#include "platform/file_descriptor.h"

namespace platform {

// Returns a descriptor that becomes readable when the child ends (pidfd_open(2)), invalid on error. Uses the
// system call, because the header of Debian 12 declares pidfd_open with C++ linkage.
inline FileDescriptor openPidfd(pid_t child) {
  return FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, child, 0)));
}

}  // namespace platform

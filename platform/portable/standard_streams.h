#pragma once

#include <fcntl.h>
#include <unistd.h>

namespace platform {

// Opens /dev/null for each standard stream that is closed, so that no file opened later gets its descriptor.
inline void fillStandardStreams() {
  int descriptor = ::open("/dev/null", O_RDWR);
  while (descriptor >= 0 && descriptor <= STDERR_FILENO) descriptor = ::open("/dev/null", O_RDWR);
  if (descriptor >= 0) ::close(descriptor);
}

}  // namespace platform

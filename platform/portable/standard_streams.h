#pragma once

#include <fcntl.h>
#include <unistd.h>

namespace platform {

// Leads those of the three standard streams that are closed nowhere, so that no file opened later takes their
// place.
inline void fillStandardStreams() {
  int descriptor = ::open("/dev/null", O_RDWR);
  while (descriptor >= 0 && descriptor <= STDERR_FILENO) descriptor = ::open("/dev/null", O_RDWR);
  if (descriptor >= 0) ::close(descriptor);
}

}  // namespace platform

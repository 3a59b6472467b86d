#include "ipc/readable.h"

#include <sys/select.h>

#include <cerrno>

int waitUntilReadable(int descriptor, std::chrono::microseconds limit) {
  if (descriptor >= FD_SETSIZE) {
    errno = EINVAL;
    return -1;
  }
  fd_set readable;
  FD_ZERO(&readable);
  FD_SET(descriptor, &readable);
  timeval wait{0, static_cast<suseconds_t>(limit.count())};  // select(2) may modify it
  return ::select(descriptor + 1, &readable, nullptr, nullptr, &wait);
}

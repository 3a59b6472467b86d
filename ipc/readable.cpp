#include "ipc/readable.h"

#include <sys/select.h>

#include <cerrno>

Readiness waitUntilReadable(int descriptor, std::chrono::microseconds limit) {
  if (descriptor >= FD_SETSIZE) {
    errno = EINVAL;
    return Readiness::Failed;
  }
  fd_set readable;
  FD_ZERO(&readable);
  FD_SET(descriptor, &readable);
  timeval wait{0, static_cast<suseconds_t>(limit.count())};  // select(2) may modify it
  const int ready = ::select(descriptor + 1, &readable, nullptr, nullptr, &wait);
  if (ready == -1) return Readiness::Failed;
  return ready == 0 ? Readiness::TimedOut : Readiness::Readable;
}

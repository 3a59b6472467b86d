#include "platform/socket.h"

#include <fcntl.h>
#include <sys/socket.h>

namespace platform {

int openSocket(int domain, int type, int protocol) {
  const int descriptor = ::socket(domain, type, protocol);
  if (descriptor >= 0) ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
  return descriptor;
}

std::optional<int> unacknowledgedBytes(int socket) {
  int bytes = 0;
  socklen_t size = sizeof bytes;
  if (::getsockopt(socket, SOL_SOCKET, SO_NWRITE, &bytes, &size) != 0) return std::nullopt;
  return bytes;
}

}  // namespace platform

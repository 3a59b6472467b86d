#include "platform/socket.h"

#include <linux/sockios.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

namespace platform {

int openSocket(int domain, int type, int protocol) {
  return ::socket(domain, type | SOCK_CLOEXEC, protocol);
}

std::optional<int> unacknowledgedBytes(int socket) {
  int bytes = 0;
  return ::ioctl(socket, SIOCOUTQ, &bytes) == 0 ? std::optional(bytes) : std::nullopt;
}

}  // namespace platform

#include "platform/descriptors.h"

#include <fcntl.h>
#include <linux/sockios.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <string>

namespace platform {

FileDescriptor reopen(int descriptor, int flags) {
  const std::string path = "/proc/self/fd/" + std::to_string(descriptor);
  return FileDescriptor(::open(path.c_str(), flags | O_CLOEXEC));
}

FileDescriptor openSocket(int domain, int type, int protocol) {
  return FileDescriptor(::socket(domain, type | SOCK_CLOEXEC, protocol));
}

std::optional<int> unacknowledgedBytes(int socket) {
  int bytes = 0;
  return ::ioctl(socket, SIOCOUTQ, &bytes) == 0 ? std::optional(bytes) : std::nullopt;
}

void closeDescriptorsFrom(int first, posix_spawn_file_actions_t& actions) {
  posix_spawn_file_actions_addclosefrom_np(&actions, first);
}

}  // namespace platform

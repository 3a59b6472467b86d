#include "platform/reopen.h"

#include <fcntl.h>

#include <string>

namespace platform {

FileDescriptor reopen(int descriptor, int flags) {
  const std::string path = "/proc/self/fd/" + std::to_string(descriptor);
  return FileDescriptor(::open(path.c_str(), flags | O_CLOEXEC));
}

}  // namespace platform

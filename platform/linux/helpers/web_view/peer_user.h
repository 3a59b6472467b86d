#pragma once

#include "platform/file_descriptor.h"

namespace helpers {

// Whether the other end of this accepted IPv4 connection is a socket of this process's own user, on this
// machine. False if that can't be told. Any thread.
[[nodiscard]] bool comesFromThisUser(const platform::FileDescriptor& client);

}  // namespace helpers

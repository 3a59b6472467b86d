#pragma once

#include "platform/file_descriptor.h"

namespace helpers {

// Returns whether the peer of this accepted IPv4 connection is a socket of this process's user on this
// machine. Returns false if that cannot be determined. Thread-safe.
[[nodiscard]] bool comesFromThisUser(const platform::FileDescriptor& client);

}  // namespace helpers

#pragma once

#include "platform/file_descriptor.h"

namespace helpers {

// Hands the bytes of each of two stream sockets to the other until one of them fails, or has ended and all of
// its bytes are handed on. No half-closed connection goes on: a client of HTTP that ends has left. Makes both
// non-blocking.
void relay(const platform::FileDescriptor& one, const platform::FileDescriptor& other);

}  // namespace helpers

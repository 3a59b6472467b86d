#pragma once

#include "platform/file_descriptor.h"

namespace helpers {

// Copies bytes between two stream sockets in both directions. Usable on any thread. Makes both sockets
// non-blocking. Blocks until one socket fails, or is at end-of-file and all of its bytes have been written.
// Half-closed connections are not kept open, because an HTTP client that closes its side has left.
void relay(const platform::FileDescriptor& one, const platform::FileDescriptor& other);

}  // namespace helpers

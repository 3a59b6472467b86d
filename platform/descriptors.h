#pragma once

#include <spawn.h>

#include <optional>

#include "platform/file_descriptor.h"

namespace platform {

// What systems do differently with descriptors. Any thread.

// Opens the file behind `descriptor` once more, with these flags of open(2) and close-on-exec. Invalid, and
// errno set, if it can't be opened.
[[nodiscard]] FileDescriptor reopen(int descriptor, int flags);

// socket(2) with close-on-exec. Invalid, and errno set, if it fails.
[[nodiscard]] FileDescriptor openSocket(int domain, int type, int protocol);

// The bytes that were written to `socket` and that its peer has neither acknowledged (TCP) nor read (local
// sockets). Returns nullopt if the system can't tell.
[[nodiscard]] std::optional<int> unacknowledgedBytes(int socket);

// Has a child of posix_spawn(3) close every descriptor from `first` on, also those that libraries opened
// without close-on-exec.
void closeDescriptorsFrom(int first, posix_spawn_file_actions_t& actions);

}  // namespace platform

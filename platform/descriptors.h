#pragma once

#include <spawn.h>

#include <optional>

#include "platform/file_descriptor.h"

namespace platform {

// Descriptor operations that differ between systems. Thread-safe.

// Opens the file of `descriptor` again with these flags of open(2) and O_CLOEXEC. Returns an invalid
// descriptor and sets errno on failure.
[[nodiscard]] FileDescriptor reopen(int descriptor, int flags);

// Calls socket(2) and sets close-on-exec. Returns an invalid descriptor and sets errno on failure.
[[nodiscard]] FileDescriptor openSocket(int domain, int type, int protocol);

// Returns the number of bytes written to `socket` that its peer has not yet acknowledged (TCP) or read (local
// sockets). Returns nullopt if the system does not report it.
[[nodiscard]] std::optional<int> unacknowledgedBytes(int socket);

// Adds file actions that close, in the child of posix_spawn(3), every descriptor from `first` on, including
// those that libraries opened without close-on-exec.
void closeDescriptorsFrom(int first, posix_spawn_file_actions_t& actions);

}  // namespace platform

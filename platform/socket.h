#pragma once

#include <optional>

namespace platform {

// What systems do differently with sockets. Any thread.

// socket(2) with close-on-exec. The caller owns the descriptor; -1 and errno if it fails.
[[nodiscard]] int openSocket(int domain, int type, int protocol);

// The bytes that were written to `socket` and that its peer has neither acknowledged (TCP) nor read (local
// sockets). Returns nullopt if the system can't tell.
[[nodiscard]] std::optional<int> unacknowledgedBytes(int socket);

}  // namespace platform

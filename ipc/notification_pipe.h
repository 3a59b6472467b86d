#pragma once

#include <span>

#include "platform/file_descriptor.h"

// Where other programs leave their messages; frozen (doc/compatibility.md). What follows is for the thread of
// its listener.
inline constexpr const char* notificationPipe = "/tmp/KMNOTIPIPE";

// Reads once from the notification pipe into `buffer` (1024 zero bytes) and logs what it read. Returns the
// count; 0 at the end of the file, when nobody writes; the negated errno when there is nothing to read just
// now (EAGAIN); -1, and a line in the system log, on any other failure. Blocks only if the descriptor does.
[[nodiscard]] int read_pipe(int descriptor, std::span<char> buffer);

// A writing end of the FIFO that `reader` reads, which keeps it from reporting the end of the file without
// pause once its last writer has left. Not valid when `reader` is no FIFO, or when it can't be had. See
// fifo(7).
[[nodiscard]] platform::FileDescriptor holdOpenForWriting(int reader);

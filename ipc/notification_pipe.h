#pragma once

#include <span>

#include "platform/file_descriptor.h"

// The FIFO to which other programs write their messages. Frozen: doc/compatibility.md. The functions below
// are for the listener's thread.
inline constexpr const char* notificationPipe = "/tmp/KMNOTIPIPE";

// Calls read(2) once on the notification pipe with `buffer` (1024 zero bytes) and logs the text. Returns the
// byte count; 0 at end of file, when there is no writer; -EAGAIN if there is nothing to read; -1 after any
// other error, which is written to the system log. Blocks only if the descriptor does.
[[nodiscard]] int read_pipe(int descriptor, std::span<char> buffer);

// Opens the FIFO of `reader` for writing. While this end is open, the reader gets EAGAIN instead of end of
// file after its last writer has closed, and select(2) does not return at once. Returns an invalid descriptor
// if `reader` is not a FIFO or cannot be reopened. See fifo(7).
[[nodiscard]] platform::FileDescriptor openWriteEnd(int reader);

#pragma once

// Sends one command ("-ton", "-toff", "-m" or "-u") to the main application over the FIFO /tmp/KMPIPE, which
// the main application creates and reads. Opens the FIFO, writes exactly the bytes of `message` in one
// write(2), without a terminator, and closes it. See fifo(7).
//
// Returns 0 if write(2) succeeded, even partially; otherwise the negated errno of the step that failed, which
// is also reported to the system log and on standard output. A message that fails is lost; there are no
// retries. Blocks the caller for about 10 ms. Thread-safe.
[[nodiscard]] int sendPipeMsg(const char* message);

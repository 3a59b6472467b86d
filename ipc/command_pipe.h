#pragma once

// Tells the main application one command ("-ton", "-toff", "-m" or "-u") over the FIFO /tmp/KMPIPE, which the
// main application makes and reads: exactly the bytes of `message`, in one write of one open and close,
// without a terminator. See fifo(7).
//
// Any thread; blocks its caller for about 10 ms. Returns 0 when the write did not fail, a short one included;
// otherwise the negated errno of the step that failed, which is also reported to the system log and on
// standard output. A message that fails is lost; nothing is retried and no descriptor stays open.
[[nodiscard]] int sendPipeMsg(const char* message);

#pragma once

namespace platform {

// Prepares the process, independently of how it was started. Call it first in main, before any other thread
// exists.
//
// Opens /dev/null for standard streams that are closed, so that no later open(2) returns 0 to 2. Marks all
// other inherited descriptors close-on-exec. Blocks SIGTERM, SIGINT and SIGHUP until SignalPipe unblocks
// them. Ignores SIGPIPE, so that writing to a pipe without a reader fails with EPIPE. Logs an uncaught
// exception, std::bad_alloc included, and ends the process with status 1.
void prepareProcess();

}  // namespace platform

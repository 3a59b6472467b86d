#pragma once

namespace platform {

// Prepares the process, whatever environment it was started in. Call it first in main, before any other
// thread exists.
//
// Opens /dev/null for standard streams that are closed, so that no later open(2) returns 0 to 2. Marks all
// other inherited descriptors close-on-exec. Blocks SIGTERM, SIGINT and SIGHUP until SignalPipe unblocks
// them. Ignores SIGPIPE, so that writing to a pipe without a reader fails with EPIPE. Installs a terminate
// handler that logs an uncaught exception, such as std::bad_alloc, and ends the process with status 1.
void prepareProcess();

}  // namespace platform

#pragma once

namespace platform {

// Prepares the process. Call it first in main, before any other thread exists.
//
// Opens /dev/null for standard streams that are closed, so that no later open(2) returns 0 to 2. Ignores
// SIGPIPE, so that writing to a pipe without a reader fails with EPIPE. Blocks SIGTERM, SIGINT and SIGHUP in
// this thread and those that it starts, until handleTerminationSignals. Logs an uncaught exception and ends
// the process with status 1.
void prepareProcess();

}  // namespace platform

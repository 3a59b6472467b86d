#pragma once

namespace platform {

// The first thing in main. Standard streams that are closed lead nowhere, so that no file opened later takes
// their place. SIGPIPE is ignored: a reader that leaves between open and write is a failed write. SIGTERM,
// SIGINT and SIGHUP are blocked in this thread and in those that it starts, until hearEndingSignals. An
// uncaught exception is logged and ends the process with status 1.
void prepareProcess();

}  // namespace platform

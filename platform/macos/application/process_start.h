#pragma once

namespace platform {

// Prepares the process. Call it first in main, before any other thread exists.
//
// Besides setProcessDefaults(): blocks SIGTERM, SIGINT and SIGHUP in this thread and those that it starts,
// until handleTerminationSignals.
void prepareProcess();

}  // namespace platform

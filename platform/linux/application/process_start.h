#pragma once

namespace platform {

// Prepares the process, whatever environment it was started in. Call it first in main, before any other
// thread exists.
//
// Besides setProcessDefaults(): marks all inherited descriptors but the standard streams close-on-exec, and
// blocks SIGTERM, SIGINT and SIGHUP until SignalPipe unblocks them.
void prepareProcess();

}  // namespace platform

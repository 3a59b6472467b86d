#pragma once

namespace platform {

// Sets up the agent's process as on every system. Call it first in main, before any other thread exists.
//
// Opens /dev/null for standard streams that are closed, so that no later open(2) returns 0 to 2. Ignores
// SIGPIPE, so that writing to a pipe without a reader fails with EPIPE. Sets the identity for syslog(3) and
// line buffering for standard output. Installs a terminate handler that logs an uncaught exception, such as
// std::bad_alloc, and ends the process with status 1; the default one prints only to standard error and
// aborts.
void setProcessDefaults();

}  // namespace platform

#pragma once

namespace platform {

// Sets what any program of this product needs from its process. Call it first in main, before any other
// thread exists.
//
// Opens /dev/null for standard streams that are closed, so that no later open(2) returns 0 to 2. Ignores
// SIGPIPE, so that writing to a pipe without a reader fails with EPIPE. Names the process to syslog, and
// prints each line of standard output at once. Installs a terminate handler that logs an uncaught exception,
// such as std::bad_alloc, and ends the process with status 1; the default handler prints only to standard
// error and aborts.
void setProcessDefaults();

}  // namespace platform

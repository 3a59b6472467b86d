#pragma once

namespace platform {

// The first thing in main: makes the process fit for all that follows, whoever started it. Standard streams
// that were closed lead nowhere, instead of to the next file that is opened; what else was handed down stays
// with this process and goes to none of its commands. SIGTERM, SIGINT and SIGHUP wait until somebody listens
// to them. SIGPIPE is ignored: a reader that leaves between open and write is a failed write, not the end of
// the agent. An exception that nobody catches, the want of memory for one, is told and ends the process
// with 1.
void prepareProcess();

}  // namespace platform

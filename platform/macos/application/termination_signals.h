#pragma once

#include <functional>

namespace platform {

// Blocks SIGTERM, SIGINT and SIGHUP, except a SIGHUP that the parent process ignores, as nohup(1) does. Call
// it before any other thread exists, because threads inherit the mask.
void blockTerminationSignals();

// Starts a thread that waits for these signals and calls `ended`, on that thread, for each. Call it once per
// process, after blockTerminationSignals.
void handleTerminationSignals(std::function<void()> ended);

}  // namespace platform

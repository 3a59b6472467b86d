#pragma once

#include <functional>

namespace platform {

// Blocks SIGTERM, SIGINT and SIGHUP, except a SIGHUP that the starter has ignored, as nohup(1) does. To be
// called before any thread is started, since threads inherit the mask.
void blockEndingSignals();

// Calls `ended` at each of these signals, on a thread of its own that waits for them. Once per process, after
// blockEndingSignals.
void hearEndingSignals(std::function<void()> ended);

}  // namespace platform

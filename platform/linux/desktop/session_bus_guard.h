#pragma once

namespace platform {

// Disables the session bus for this process in two cases: no bus exists (libdbus would launch one that
// outlives the agent), or the bus accepts connections but does not answer within 1 s (libdbus would block
// forever). The process then runs as on a desktop without a bus. Call it before the first use of the bus and
// before any other thread exists: it may call setenv(3).
void avoidUnusableSessionBus();

}  // namespace platform

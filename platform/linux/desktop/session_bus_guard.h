#pragma once

namespace platform {

// Keeps this process from the session bus where that would harm: when there is no bus yet (the bus library
// would start one that outlives the agent), and when the bus takes connections but does not answer (the
// library would wait without end). The process then runs as on a desktop without a bus. To be called before
// the bus is first used.
void avoidUnusableSessionBus();

}  // namespace platform

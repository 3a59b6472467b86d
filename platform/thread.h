#pragma once

#include <functional>

namespace platform {

// Runs `body` on a new detached thread with all signals blocked. If the system cannot create a thread, writes
// an error to the console log and does not run `body`. Thread-safe.
void detachNewThread(std::function<void()> body);

}  // namespace platform

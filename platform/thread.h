#pragma once

#include <functional>

namespace platform {

// Runs `body` on a thread of its own, which nobody waits for. Signals never interrupt it. Says so on the
// console log when the system has no thread to give; `body` then never runs. Any thread.
void detachNewThread(std::function<void()> body);

}  // namespace platform

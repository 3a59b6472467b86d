#pragma once

#include <functional>

// Runs `work` on a thread of its own on which the system refuses this call (a SYS_ number) with this error,
// also to what is started there. Returns when it is done; false when the refusal can't be had.
[[nodiscard]] bool withRefusedCall(int call, int error, const std::function<void()>& work);

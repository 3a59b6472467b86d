#pragma once

#include <functional>

// Runs `work` on a new thread on which a seccomp filter lets this system call (SYS_...) fail with `error`,
// also in its child processes. Returns once it is done; false if the filter could not be installed.
[[nodiscard]] bool withRefusedCall(int call, int error, const std::function<void()>& work);

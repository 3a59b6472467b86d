#pragma once

#include <system_error>
#include <thread>
#include <utility>

namespace helpers {

// Starts `work` on a new thread. Returns a thread that is not joinable if the system cannot start one.
// Thread-safe.
template <typename Work>
[[nodiscard]] std::thread startThread(Work work) {
  try {
    return std::thread(std::move(work));
  } catch (const std::system_error&) {
    return {};
  }
}

}  // namespace helpers

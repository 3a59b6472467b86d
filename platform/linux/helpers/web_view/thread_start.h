#pragma once

#include <system_error>
#include <thread>
#include <utility>

namespace helpers {

// Starts `work` on a thread of its own. Returns an empty thread if the system has none left. Any thread.
template <typename Work>
[[nodiscard]] std::thread startThread(Work work) {
  try {
    return std::thread(std::move(work));
  } catch (const std::system_error&) {
    return {};
  }
}

}  // namespace helpers

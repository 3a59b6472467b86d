#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/file_descriptor.h"

namespace platform {

// An inotify instance: its watches and its event queue. Usable on any thread, one at a time.
class Inotify {
 public:
  struct Notice {
    int watch = -1;
    std::uint32_t mask = 0;  // IN_* bits
    std::string_view name = {};
  };

  // If inotify_init1 fails, the object is not valid: `add` fails and `drain` returns no events.
  Inotify();

  [[nodiscard]] bool valid() const { return descriptor_.valid(); }
  // Returns the descriptor, still owned here, which is readable while events are pending.
  [[nodiscard]] int descriptor() const { return descriptor_.get(); }

  // Returns the watch descriptor, which is the same for all paths to one file; -1 with errno set on error.
  [[nodiscard]] int add(const std::string& path, std::uint32_t mask);
  void remove(int watch);

  // Reads the events that are queued at the time of the call and calls `take` for each. Leaves later ones to
  // the next call, so that a busy writer cannot keep the caller in this loop.
  void drain(const std::function<void(const Notice& notice)>& take);

 private:
  FileDescriptor descriptor_;
};

}  // namespace platform

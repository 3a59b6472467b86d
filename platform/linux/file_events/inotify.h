#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/file_descriptor.h"

namespace platform {

// A queue of the kernel's notices about files, and the watches that fill it. Any thread, but one at a time.
class Inotify {
 public:
  struct Notice {
    int watch = -1;
    std::uint32_t mask = 0;  // of the IN_ bits
    std::string_view name = {};
  };

  // Not valid when there is none to be had; then every watch fails and no notice comes.
  Inotify();

  [[nodiscard]] bool valid() const { return descriptor_.valid(); }
  // Readable while notices wait; still owned here.
  [[nodiscard]] int descriptor() const { return descriptor_.get(); }

  // The number of the watch, the same for every path to one file; -1 with errno set.
  [[nodiscard]] int add(const std::string& path, std::uint32_t mask);
  void remove(int watch);

  // Takes what waits now out of the queue. What comes meanwhile is left for the next call, so that a busy
  // writer holds nobody up.
  void drain(const std::function<void(const Notice& notice)>& take);

 private:
  FileDescriptor descriptor_;
};

}  // namespace platform

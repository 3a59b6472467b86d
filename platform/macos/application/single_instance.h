#pragma once

#include <functional>

#include "platform/file_descriptor.h"

namespace platform {

// Sees to it that the program runs once per user: a lock that dies with its holder says who runs, and a
// distributed notification is how a second start asks it to come forward. Main thread.
class SingleInstance {
 public:
  SingleInstance();

  // Whether this process is the one that runs; also true where no lock is to be had, so that the program
  // still works.
  [[nodiscard]] bool isFirst() const { return first_; }

  // First process: calls `reopened` from the run loop at each second start.
  void listen(std::function<void()> reopened);

  // Second process: tells the first one, and does not wait for it.
  void tellFirst();

 private:
  FileDescriptor lock_;
  bool first_ = true;
};

}  // namespace platform

#pragma once

#include <functional>

#include "platform/file_descriptor.h"

namespace platform {

// Ensures one instance per user. A file lock, which the kernel releases when its holder ends, decides which
// process is first; a later process reaches the first one with a distributed notification. Main thread only.
class SingleInstance {
 public:
  SingleInstance();

  // Returns whether this process is the first one, which holds the lock. Also returns true if the lock file
  // cannot be opened or flock(2) fails with another error than EWOULDBLOCK, so that the program works without
  // a lock.
  [[nodiscard]] bool isFirst() const { return first_; }

  // First process: calls `reopened` from the run loop for each notification of a later process.
  void listen(std::function<void()> reopened);

  // Second process: posts the notification. Does not wait for the first process.
  void notifyFirst();

 private:
  FileDescriptor lock_;
  bool first_ = true;
};

}  // namespace platform

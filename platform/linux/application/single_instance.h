#pragma once

#include <functional>
#include <memory>

#include "platform/file_descriptor.h"

class QDBusVirtualObject;

namespace platform {

// Ensures one instance per user. A file lock, which the kernel releases when its holder ends, decides which
// process is first; a later process reaches the first one through a name on the session bus. Main thread
// only.
class SingleInstance {
 public:
  SingleInstance();
  ~SingleInstance();

  // Returns whether this process is the first one, which holds the lock. Also returns true if the lock file
  // cannot be opened or flock(2) fails with another error than EWOULDBLOCK, so that the program works without
  // a lock.
  [[nodiscard]] bool isFirst() const { return first_; }

  // First process: takes the bus name and calls `reopened` from the run loop for each Activate call. Returns
  // false if another process owns the name: an instance with a different runtime folder, or any other program
  // on the bus. Returns true if there is no bus.
  [[nodiscard]] bool listen(std::function<void()> reopened);

  // First process without the name: logs the owner's process id and name and sends it an Activate call.
  // Blocks for at most 5 s; logs if the owner does not answer.
  void deferToNameOwner();

  // Second process: sends Activate to the first one and retries for 10 s while that one starts, is busy or
  // ends. Returns false if the lock has become free; this process then holds it. Otherwise returns true,
  // after an error message if no process answered. Without a bus, only prints a line on standard error.
  [[nodiscard]] bool notifyFirst();

 private:
  [[nodiscard]] bool takeLock();

  FileDescriptor lock_;
  bool first_ = true;
  std::unique_ptr<QDBusVirtualObject> object_;
};

}  // namespace platform

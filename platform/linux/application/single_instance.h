#pragma once

#include <functional>
#include <memory>

#include "platform/file_descriptor.h"

class QDBusVirtualObject;

namespace platform {

// Sees to it that the program runs once per user: a lock that dies with its holder says who runs, and a name
// on the session bus is where a second start knocks. Main thread.
class SingleInstance {
 public:
  SingleInstance();
  ~SingleInstance();

  // Whether this process is the one that runs; also true where no lock is to be had, so that the program
  // still works.
  [[nodiscard]] bool isFirst() const { return first_; }

  // First process: takes the bus name and calls `reopened` from the run loop at each second start. Returns
  // false if another process owns the name: an agent under a lock elsewhere, or any program on the bus.
  [[nodiscard]] bool listen(std::function<void()> reopened);

  // First process without the name: asks its owner to come forward. Logs who that is, and if it does not
  // answer within five seconds.
  void deferToNameOwner();

  // Second process: tells the first one, waiting up to ten seconds while that starts, is busy or ends. False
  // when it has ended instead. Without a bus it is left at a line on standard error.
  [[nodiscard]] bool tellFirst();

 private:
  [[nodiscard]] bool takeLock();

  FileDescriptor lock_;
  bool first_ = true;
  std::unique_ptr<QDBusVirtualObject> object_;
};

}  // namespace platform

#pragma once

#include <sys/types.h>

// Holds one of this process's children still at a point of its life. Use it on one thread.
class TracedProcess {
 public:
  explicit TracedProcess(pid_t process);
  ~TracedProcess() { letGo(); }
  TracedProcess(const TracedProcess&) = delete;
  TracedProcess& operator=(const TracedProcess&) = delete;

  // Lets the process run until its first thread is about to stop reading from one of its sockets, and holds
  // it there. False when it doesn't come to that.
  [[nodiscard]] bool runToEndOfReading();
  void letGo();

 private:
  pid_t process_;
  bool held_ = false;
};

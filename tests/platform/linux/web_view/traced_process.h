#pragma once

#include <sys/types.h>

#include <functional>
#include <string>

struct __ptrace_syscall_info;

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
  // The same for an open of the file of this name in a folder that is open already (openat).
  [[nodiscard]] bool runToOpenOf(const std::string& name);
  void letGo();

 private:
  [[nodiscard]] bool runToCall(const std::function<bool(const __ptrace_syscall_info&)>& isAwaited);

  pid_t process_;
  bool held_ = false;
};

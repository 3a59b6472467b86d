#pragma once

#include <sys/types.h>

#include <functional>
#include <string>

struct __ptrace_syscall_info;

// Stops a child process at a system call with ptrace(). Use on one thread only.
class TracedProcess {
 public:
  explicit TracedProcess(pid_t process);
  ~TracedProcess() { letGo(); }
  TracedProcess(const TracedProcess&) = delete;
  TracedProcess& operator=(const TracedProcess&) = delete;

  // Continues the process until its first thread enters shutdown(SHUT_RD) and stops it there. Returns false
  // if it ends or after the timeout.
  [[nodiscard]] bool runToEndOfReading();
  // Like runToEndOfReading(), for openat() of a file `name`.
  [[nodiscard]] bool runToOpenOf(const std::string& name);
  void letGo();

 private:
  [[nodiscard]] bool runToCall(const std::function<bool(const __ptrace_syscall_info&)>& isAwaited);

  pid_t process_;
  bool held_ = false;
};

#pragma once

#include <sys/types.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/file_descriptor.h"

namespace platform {

// The helper program of a web view and the line on which it is told addresses. No call waits for the program
// or blocks on the line. When this object goes away the program finds its input at its end. Main thread only.
class WebViewProcess {
 public:
  using Clock = std::chrono::steady_clock;

  // A program that leaves addresses unread for longer than `patience` is ended in favour of a new one.
  explicit WebViewProcess(Clock::duration patience = std::chrono::seconds(60)) : patience_(patience) {}

  // Tells the address to the running program, or to a new one where none reads; lost where `program` can't be
  // run or the line is full. An address is one line of at most 64 KiB, any other is dropped.
  void send(const std::string& program, const std::string& address);

 private:
  [[nodiscard]] bool write(const std::string& line);
  [[nodiscard]] bool start(const std::string& program);
  [[nodiscard]] bool isStuck();
  [[nodiscard]] bool isRunning() const;
  void end();
  void reapUnwatched();

  Clock::duration patience_;
  FileDescriptor line_;
  pid_t pid_ = -1;
  std::shared_ptr<const FileDescriptor> handle_;  // readable once the program has ended
  std::vector<pid_t> unwatched_;  // programs that the system gave no handle for, until they are reaped
  std::optional<Clock::time_point> unreadSince_;
};

}  // namespace platform

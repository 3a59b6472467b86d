#pragma once

#include <sys/types.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/file_descriptor.h"

namespace platform {

// The helper program of a web view and the socket over which it receives addresses. No call waits for the
// program or blocks on the socket. The destructor closes the socket, and the program reads end-of-file. Main
// thread only.
class WebViewProcess {
 public:
  using Clock = std::chrono::steady_clock;

  // A program that leaves addresses unread for longer than `unreadTimeout` is killed and replaced at the next
  // call of `send`.
  explicit WebViewProcess(Clock::duration unreadTimeout = std::chrono::seconds(60))
      : unreadTimeout_(unreadTimeout) {}

  // Sends the address to the running program, or starts `program` if none reads the socket. Drops the address
  // if `program` cannot be started, the socket buffer is full, or the address contains a newline or exceeds
  // 64 KiB.
  void send(const std::string& program, const std::string& address);

 private:
  [[nodiscard]] bool write(const std::string& line);
  [[nodiscard]] bool start(const std::string& program);
  [[nodiscard]] bool isStuck();
  [[nodiscard]] bool isRunning() const;
  void end();
  void reapUnwatched();

  Clock::duration unreadTimeout_;
  FileDescriptor line_;
  pid_t pid_ = -1;
  std::shared_ptr<const FileDescriptor> handle_;  // pidfd, readable once the program has ended
  std::vector<pid_t> unwatched_;                  // children without a pidfd that are still to be reaped
  std::optional<Clock::time_point> unreadSince_;
};

}  // namespace platform

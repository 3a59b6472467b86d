#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "tests/harness/processes/file_descriptor.h"
#include "tests/harness/processes/syslog_message.h"

namespace test_support {

// The bare socket to which syslog(3) sends, for a poll loop of the caller's; SyslogSocket brings a thread
// along.
//
// It is made where nothing stands yet, so that a machine's own system log is never taken over, and removed at
// the end.
class LogSocket {
 public:
  explicit LogSocket(std::string path = "/dev/log");
  LogSocket(const LogSocket&) = delete;
  LogSocket& operator=(const LogSocket&) = delete;
  ~LogSocket();

  [[nodiscard]] bool valid() const { return fd_.valid(); }
  [[nodiscard]] int fd() const { return fd_.get(); }  // readable when a message waits

  struct Received {
    SyslogMessage message = {};  // of a datagram that is no log entry: its bytes as the text, and priority -1
    std::chrono::system_clock::time_point sent = {};
  };
  // The next message; nothing when none waits. Never blocks.
  [[nodiscard]] std::optional<Received> receive();

 private:
  std::string path_;
  FileDescriptor fd_;
};

}  // namespace test_support

#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "tests/harness/processes/file_descriptor.h"
#include "tests/harness/processes/syslog_message.h"

namespace test_support {

// The socket to which syslog(3) sends, for use in the caller's poll loop; SyslogSocket adds a thread.
//
// Creates the socket only if the path is free, so that it never replaces the machine's system log. Removes it
// in the destructor.
class LogSocket {
 public:
  explicit LogSocket(std::string path = "/dev/log");
  LogSocket(const LogSocket&) = delete;
  LogSocket& operator=(const LogSocket&) = delete;
  ~LogSocket();

  [[nodiscard]] bool valid() const { return fd_.valid(); }
  [[nodiscard]] int fd() const { return fd_.get(); }  // readable when a message is pending

  struct Received {
    SyslogMessage message = {};  // of a malformed log entry: its bytes as the text, and priority -1
    std::chrono::system_clock::time_point sent = {};
  };
  // Returns the next message, nullopt if none is pending. Never blocks.
  [[nodiscard]] std::optional<Received> receive();

 private:
  std::string path_;
  FileDescriptor fd_;
};

}  // namespace test_support

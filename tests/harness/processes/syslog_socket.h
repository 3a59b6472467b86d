#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "tests/harness/processes/log_socket.h"
#include "tests/harness/processes/wait_until.h"
#include "tests/harness/processes/wake_event.h"

namespace test_support {

// Fakes the system log: receives messages of syslog(3) on a thread of its own, so that no sender blocks.
// Thread-safe.
class SyslogSocket {
 public:
  using Predicate = std::function<bool(const SyslogMessage&)>;

  explicit SyslogSocket(const std::string& path = "/dev/log");
  SyslogSocket(const SyslogSocket&) = delete;
  SyslogSocket& operator=(const SyslogSocket&) = delete;
  ~SyslogSocket();

  // Returns false if the socket could not be created; no message is ever received then.
  [[nodiscard]] bool valid() const { return socket_.valid(); }

  // Returns all messages in the order of their arrival; includes at least those sent before this call.
  [[nodiscard]] std::vector<SyslogMessage> messages();
  void clear();

  // Waits for a message that matches or that has exactly this text; returns at once if it has already
  // arrived.
  [[nodiscard]] std::optional<SyslogMessage> waitFor(const Predicate& fits,
                                                     std::chrono::milliseconds timeout = kPatience);
  [[nodiscard]] std::optional<SyslogMessage> waitFor(const std::string& text,
                                                     std::chrono::milliseconds timeout = kPatience);

 private:
  void run();
  void collect();

  LogSocket socket_;
  WakeEvent stop_;
  std::mutex mutex_;
  std::condition_variable arrived_;
  std::vector<SyslogMessage> messages_;
  std::thread thread_;
};

}  // namespace test_support

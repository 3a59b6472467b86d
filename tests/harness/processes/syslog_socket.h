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

// Stands in for the system log: takes what programs send through syslog(3) for as long as it lives, on a
// thread of its own, so that no sender ever waits. Its methods may be called on any thread.
class SyslogSocket {
 public:
  using Predicate = std::function<bool(const SyslogMessage&)>;

  explicit SyslogSocket(const std::string& path = "/dev/log");
  SyslogSocket(const SyslogSocket&) = delete;
  SyslogSocket& operator=(const SyslogSocket&) = delete;
  ~SyslogSocket();

  // False where the socket could not be made; nothing is ever received then.
  [[nodiscard]] bool valid() const { return socket_.valid(); }

  // All messages so far in the order of their arrival, with certainty those that were sent before this call.
  [[nodiscard]] std::vector<SyslogMessage> messages();
  void clear();

  // The first message, an earlier one or one to come, that fits, or that has exactly this text.
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

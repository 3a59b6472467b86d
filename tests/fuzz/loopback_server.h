#pragma once

#include <mutex>
#include <string>
#include <thread>

#include "tests/harness/servers/loopback_listener.h"

namespace fuzz {

// A server on 127.0.0.1 that answers every request with the same bytes and closes the connection. Serves one
// connection at a time on its own thread.
class LoopbackServer {
 public:
  LoopbackServer();
  ~LoopbackServer();
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  // Returns for example "http://127.0.0.1:8080".
  [[nodiscard]] const std::string& origin() const { return origin_; }
  // Sets the answer for the next connections. Thread-safe.
  void setAnswer(std::string answer);

 private:
  void serve();
  void answerOn(int connection);

  test_support::LoopbackListener listener_;
  std::string origin_;
  std::mutex mutex_;
  std::string answer_;
  std::jthread thread_;
};

}  // namespace fuzz

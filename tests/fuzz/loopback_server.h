#pragma once

#include <mutex>
#include <string>
#include <thread>

#include "tests/harness/servers/loopback_listener.h"

namespace fuzz {

// A server on the loopback that answers every request with the same bytes and ends the connection, one
// connection after the other, on a thread of its own.
class LoopbackServer {
 public:
  LoopbackServer();
  ~LoopbackServer();
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  // As in "http://127.0.0.1:8080".
  [[nodiscard]] const std::string& origin() const { return origin_; }
  // What the next connections get.
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

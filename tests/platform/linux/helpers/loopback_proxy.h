#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/file_descriptor.h"

namespace web_view_test {

// An HTTP proxy on 127.0.0.1 for CONNECT requests. Connects each client to `target` on loopback, whatever
// host it requests. Serves each client on a thread of its own.
class LoopbackProxy {
 public:
  enum class Answer { Connects, Refuses };
  explicit LoopbackProxy(std::uint16_t target, Answer answer = Answer::Connects);
  ~LoopbackProxy();
  LoopbackProxy(const LoopbackProxy&) = delete;
  LoopbackProxy& operator=(const LoopbackProxy&) = delete;

  // Returns SCHEME://127.0.0.1:PORT.
  [[nodiscard]] std::string address(const std::string& scheme = "http") const;
  // Returns the first line of each request so far. Thread-safe.
  [[nodiscard]] std::vector<std::string> asked() const;

 private:
  void serve();
  void answer(const platform::FileDescriptor& client);

  std::uint16_t target_;
  Answer answer_;
  platform::FileDescriptor listener_;
  std::uint16_t port_ = 0;
  mutable std::mutex mutex_;
  std::vector<std::string> asked_;
  std::vector<std::thread> relays_;
  std::thread thread_;
};

}  // namespace web_view_test

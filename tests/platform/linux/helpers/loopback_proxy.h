#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/file_descriptor.h"

namespace web_view_test {

// A real HTTP proxy on loopback for requests by CONNECT, one connection after the other. Whatever it is asked
// to connect to, it connects to one port on loopback.
class LoopbackProxy {
 public:
  enum class Answer { Connects, Refuses };
  explicit LoopbackProxy(std::uint16_t target, Answer answer = Answer::Connects);
  ~LoopbackProxy();
  LoopbackProxy(const LoopbackProxy&) = delete;
  LoopbackProxy& operator=(const LoopbackProxy&) = delete;

  // http://127.0.0.1:PORT, or with another scheme.
  [[nodiscard]] std::string address(const std::string& scheme = "http") const;
  // The first line of each request so far.
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

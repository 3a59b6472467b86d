#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "tests/harness/processes/file_descriptor.h"
#include "tests/harness/processes/wait_until.h"
#include "tests/harness/processes/wake_event.h"
#include "tests/harness/servers/loopback_listener.h"

namespace test_support {

// One connection of a client's, as a script sees it. What blocks ends early, with what came so far, when the
// client goes or the server stops.
class RawConnection {
 public:
  RawConnection(FileDescriptor socket, const WakeEvent& stop) : socket_(std::move(socket)), stop_(stop) {}

  // The head of the next request, with the empty line that ends it.
  std::string readHead();
  // The head and as much body as its Content-Length says.
  std::string readRequest();
  std::string readBytes(std::size_t count);
  // False when the client has gone.
  bool send(std::string_view bytes);
  // Sends `bytes` one at a time, with `pause` before each.
  bool sendSlowly(std::string_view bytes, std::chrono::milliseconds pause);
  // Returns when `time` is over.
  void pauseFor(std::chrono::milliseconds time);
  // Says and reads nothing until the server stops, the client goes or the time is over. True when the client
  // went.
  bool waitForEnd(std::chrono::milliseconds time = kPatience);
  // Ends the connection at once, without a farewell.
  void reset();

 private:
  [[nodiscard]] bool receiveSome(std::size_t most);

  FileDescriptor socket_;
  const WakeEvent& stop_;
  std::string unread_;
};

// A server on the loopback that says, byte for byte, what the test wants. Connections are served beside each
// other, and closed when their script returns.
class RawHttpServer {
 public:
  using Script = std::function<void(RawConnection&)>;

  // The first connection gets the first script, and so on; the last script serves all that follow.
  explicit RawHttpServer(std::vector<Script> scripts, int receiveBuffer = 0);
  explicit RawHttpServer(Script script) : RawHttpServer(std::vector<Script>{std::move(script)}) {}
  // Reads each request and answers with `reply`, as it stands.
  [[nodiscard]] static Script answer(std::string reply);
  RawHttpServer(const RawHttpServer&) = delete;
  RawHttpServer& operator=(const RawHttpServer&) = delete;
  ~RawHttpServer();

  [[nodiscard]] int port() const { return listener_.port; }
  // The address of `path` here, as in "http://127.0.0.1:8080/path".
  [[nodiscard]] std::string url(const std::string& path = "/", const std::string& scheme = "http") const;
  [[nodiscard]] std::size_t connections() const { return connections_; }

 private:
  void acceptConnections();

  std::vector<Script> scripts_;
  LoopbackListener listener_;
  WakeEvent stop_;
  std::atomic<std::size_t> connections_ = 0;
  std::vector<std::jthread> connectionThreads_;
  std::jthread acceptThread_;
};

// A whole reply with that status, body and its length. `headers` end with a line end, each.
[[nodiscard]] std::string httpReply(std::string_view body, const std::string& headers = {},
                                    const std::string& status = "200 OK");

}  // namespace test_support

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

// A client's connection, as a script sees it. Blocking calls return early, with the bytes so far, if the
// client disconnects or the server stops.
class RawConnection {
 public:
  RawConnection(FileDescriptor socket, const WakeEvent& stop) : socket_(std::move(socket)), stop_(stop) {}

  // Returns the head of the next request, including the empty line that ends it.
  std::string readHead();
  // Returns the head and as many bytes of body as its Content-Length says.
  std::string readRequest();
  std::string readBytes(std::size_t count);
  // Returns false if the client has disconnected.
  bool send(std::string_view bytes);
  // Sends the bytes one at a time, with `pause` before each.
  bool sendSlowly(std::string_view bytes, std::chrono::milliseconds pause);
  // Returns after `time`.
  void pauseFor(std::chrono::milliseconds time);
  // Waits without sending or reading until the server stops, the client disconnects or the time is over.
  // Returns true if the client disconnected.
  bool waitForEnd(std::chrono::milliseconds time = kPatience);
  // Resets the connection (RST).
  void reset();

 private:
  [[nodiscard]] bool receiveSome(std::size_t maxBytes);

  FileDescriptor socket_;
  const WakeEvent& stop_;
  std::string unread_;
};

// A scripted server on the loopback interface with full control over each byte. Serves connections
// concurrently and closes each when its script returns.
class RawHttpServer {
 public:
  using Script = std::function<void(RawConnection&)>;

  // The first connection runs the first script, and so on; all further connections run the last one.
  explicit RawHttpServer(std::vector<Script> scripts, int receiveBuffer = 0);
  explicit RawHttpServer(Script script) : RawHttpServer(std::vector<Script>{std::move(script)}) {}
  // Returns a script that reads each request and sends `reply` verbatim.
  [[nodiscard]] static Script answer(std::string reply);
  RawHttpServer(const RawHttpServer&) = delete;
  RawHttpServer& operator=(const RawHttpServer&) = delete;
  ~RawHttpServer();

  [[nodiscard]] int port() const { return listener_.port; }
  // Returns the URL of `path`, for example "http://127.0.0.1:8080/path".
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

// Returns a complete reply with that status, body and Content-Length. Each of the `headers` ends with CRLF.
[[nodiscard]] std::string httpReply(std::string_view body, const std::string& headers = {},
                                    const std::string& status = "200 OK");

}  // namespace test_support

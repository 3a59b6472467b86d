#include "tests/harness/servers/raw_http_server.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>

#include "tests/harness/processes/wait_until.h"

namespace test_support {
namespace {

constexpr std::string_view kEndOfHead = "\r\n\r\n";
constexpr std::chrono::milliseconds kForEver{-1};

// Returns whether `fd` became ready for `events` before the timeout and before `stop` was signalled.
bool waitFor(int fd, short events, const WakeEvent& stop, std::chrono::milliseconds time) {
  std::array<pollfd, 2> polled{{{fd, events, 0}, {stop.fd(), POLLIN, 0}}};
  const int ready = ::poll(polled.data(), polled.size(), static_cast<int>(time.count()));
  return ready > 0 && polled[1].revents == 0;
}

std::size_t contentLength(const std::string& head) {
  constexpr std::string_view name = "Content-Length: ";
  const std::size_t place = head.find(name);
  return place == std::string::npos ? 0 : std::stoul(head.substr(place + name.size()));
}

}  // namespace

std::string RawConnection::readHead() {
  while (unread_.find(kEndOfHead) == std::string::npos && receiveSome(1 << 16)) continue;
  const std::size_t end = unread_.find(kEndOfHead);
  return readBytes(end == std::string::npos ? unread_.size() : end + kEndOfHead.size());
}

std::string RawConnection::readRequest() {
  std::string request = readHead();
  return request + readBytes(contentLength(request));
}

std::string RawConnection::readBytes(std::size_t count) {
  while (unread_.size() < count && receiveSome(count - unread_.size())) continue;
  std::string bytes = unread_.substr(0, count);
  unread_.erase(0, count);
  return bytes;
}

bool RawConnection::send(std::string_view bytes) {
  while (!bytes.empty()) {
    if (!waitFor(socket_.get(), POLLOUT, stop_, kPatience)) return false;
    const ssize_t count = ::send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (count < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

bool RawConnection::sendSlowly(std::string_view bytes, std::chrono::milliseconds pause) {
  return std::all_of(bytes.begin(), bytes.end(), [&](const char& byte) {
    pauseFor(pause);
    return send({&byte, 1});
  });
}

void RawConnection::pauseFor(std::chrono::milliseconds time) {
  waitFor(-1, 0, stop_, time);
}

bool RawConnection::waitForEnd(std::chrono::milliseconds time) {
  pollfd hungUp{socket_.get(), POLLRDHUP, 0};
  return waitFor(socket_.get(), POLLRDHUP, stop_, time) && ::poll(&hungUp, 1, 0) == 1;
}

void RawConnection::reset() {
  const linger atOnce{1, 0};
  ::setsockopt(socket_.get(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
  socket_.reset();
}

bool RawConnection::receiveSome(std::size_t maxBytes) {
  if (!waitFor(socket_.get(), POLLIN, stop_, kPatience)) return false;
  std::array<char, 1 << 16> buffer{};
  const ssize_t count = ::recv(socket_.get(), buffer.data(), std::min(maxBytes, buffer.size()), 0);
  if (count <= 0) return false;
  unread_.append(buffer.data(), static_cast<std::size_t>(count));
  return true;
}

RawHttpServer::RawHttpServer(std::vector<Script> scripts, int receiveBuffer)
    : scripts_(std::move(scripts)),
      listener_(listenOnLoopback(receiveBuffer)),
      acceptThread_([this] { acceptConnections(); }) {}

RawHttpServer::Script RawHttpServer::answer(std::string reply) {
  return [reply = std::move(reply)](RawConnection& connection) {
    connection.readRequest();
    connection.send(reply);
  };
}

RawHttpServer::~RawHttpServer() {
  stop_.signal();
  acceptThread_.join();
}

std::string RawHttpServer::url(const std::string& path, const std::string& scheme) const {
  return scheme + "://127.0.0.1:" + std::to_string(port()) + path;
}

void RawHttpServer::acceptConnections() {
  while (waitFor(listener_.socket.get(), POLLIN, stop_, kForEver)) {
    FileDescriptor socket(::accept4(listener_.socket.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!socket.valid()) continue;  // the client has disconnected
    const int on = 1;
    ::setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    const Script& script = scripts_[std::min<std::size_t>(connections_++, scripts_.size() - 1)];
    connectionThreads_.emplace_back(
        [&script, connection = RawConnection(std::move(socket), stop_)]() mutable { script(connection); });
  }
}

std::string httpReply(std::string_view body, const std::string& headers, const std::string& status) {
  return "HTTP/1.1 " + status + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" + headers +
         "\r\n" + std::string(body);
}

}  // namespace test_support

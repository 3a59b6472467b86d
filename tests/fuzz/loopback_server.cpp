#include "tests/fuzz/loopback_server.h"

#include <sys/socket.h>

#include <array>
#include <string_view>

namespace fuzz {
namespace {

using test_support::FileDescriptor;

// Gives up on a client that sends nothing for this time.
constexpr timeval kPatience{1, 0};

void readHead(int connection) {
  std::array<char, 4096> buffer{};
  std::string head;
  while (head.find("\r\n\r\n") == std::string::npos) {
    const ssize_t count = ::recv(connection, buffer.data(), buffer.size(), 0);
    if (count <= 0) return;
    head.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

void send(int connection, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (count <= 0) return;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

// Closing a socket with unread bytes resets the connection before the client has read its answer.
void readToTheEnd(int connection) {
  std::array<char, 4096> buffer{};
  while (::recv(connection, buffer.data(), buffer.size(), 0) > 0) continue;
}

}  // namespace

LoopbackServer::LoopbackServer()
    : listener_(test_support::listenOnLoopback()),
      origin_("http://127.0.0.1:" + std::to_string(listener_.port)),
      thread_([this] { serve(); }) {}

LoopbackServer::~LoopbackServer() {
  ::shutdown(listener_.socket.get(), SHUT_RDWR);
}

void LoopbackServer::setAnswer(std::string answer) {
  const std::lock_guard lock(mutex_);
  answer_ = std::move(answer);
}

void LoopbackServer::serve() {
  for (;;) {
    const FileDescriptor connection(::accept4(listener_.socket.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!connection.valid()) return;
    ::setsockopt(connection.get(), SOL_SOCKET, SO_RCVTIMEO, &kPatience, sizeof kPatience);
    ::setsockopt(connection.get(), SOL_SOCKET, SO_SNDTIMEO, &kPatience, sizeof kPatience);
    answerOn(connection.get());
  }
}

void LoopbackServer::answerOn(int connection) {
  readHead(connection);
  std::string answer;
  {
    const std::lock_guard lock(mutex_);
    answer = answer_;
  }
  send(connection, answer);
  ::shutdown(connection, SHUT_WR);
  readToTheEnd(connection);
}

}  // namespace fuzz

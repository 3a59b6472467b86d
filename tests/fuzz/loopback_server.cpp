#include "tests/fuzz/loopback_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <stdexcept>
#include <string_view>

namespace fuzz {
namespace {

using test_support::FileDescriptor;

// A client that says nothing is none.
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

// Unread bytes at the end would reset the connection before the client has read its answer.
void readToTheEnd(int connection) {
  std::array<char, 4096> buffer{};
  while (::recv(connection, buffer.data(), buffer.size(), 0) > 0) continue;
}

}  // namespace

LoopbackServer::LoopbackServer() : listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* generic = reinterpret_cast<sockaddr*>(&address);
  if (::bind(listener_.get(), generic, size) != 0 || ::listen(listener_.get(), 64) != 0 ||
      ::getsockname(listener_.get(), generic, &size) != 0)
    throw std::runtime_error("no server on the loopback");
  origin_ = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port));
  thread_ = std::jthread([this] { serve(); });
}

LoopbackServer::~LoopbackServer() {
  ::shutdown(listener_.get(), SHUT_RDWR);
}

void LoopbackServer::setAnswer(std::string answer) {
  const std::lock_guard lock(mutex_);
  answer_ = std::move(answer);
}

void LoopbackServer::serve() {
  for (;;) {
    const FileDescriptor connection(::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
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

#include "tests/platform/linux/helpers/loopback_proxy.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <memory>
#include <string_view>
#include <utility>

namespace web_view_test {
namespace {

using platform::FileDescriptor;

sockaddr_in loopback(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

FileDescriptor connectTo(std::uint16_t port) {
  FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const sockaddr_in address = loopback(port);
  if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
    socket.reset();
  return socket;
}

void send(const FileDescriptor& socket, std::string_view text) {
  static_cast<void>(::send(socket.get(), text.data(), text.size(), MSG_NOSIGNAL));
}

std::string readHead(const FileDescriptor& client) {
  std::string head;
  for (char byte = 0; head.find("\r\n\r\n") == std::string::npos && ::recv(client.get(), &byte, 1, 0) == 1;)
    head += byte;
  return head;
}

// Returns false at the end of file or on an error.
bool pass(const FileDescriptor& from, const FileDescriptor& to) {
  std::array<char, 4096> buffer{};
  const ssize_t count = ::recv(from.get(), buffer.data(), buffer.size(), 0);
  if (count <= 0) return false;
  send(to, {buffer.data(), static_cast<std::size_t>(count)});
  return true;
}

void relay(const FileDescriptor& one, const FileDescriptor& other) {
  for (;;) {
    std::array<pollfd, 2> ends{{{one.get(), POLLIN, 0}, {other.get(), POLLIN, 0}}};
    if (::poll(ends.data(), ends.size(), -1) < 0) return;
    if (ends[0].revents != 0 && !pass(one, other)) return;
    if (ends[1].revents != 0 && !pass(other, one)) return;
  }
}

}  // namespace

LoopbackProxy::LoopbackProxy(std::uint16_t target, Answer answer)
    : target_(target), answer_(answer), listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address = loopback(0);
  socklen_t size = sizeof address;
  auto* generic = reinterpret_cast<sockaddr*>(&address);
  ::bind(listener_.get(), generic, size);
  ::listen(listener_.get(), 10);
  ::getsockname(listener_.get(), generic, &size);
  port_ = ntohs(address.sin_port);
  thread_ = std::thread([this] { serve(); });
}

LoopbackProxy::~LoopbackProxy() {
  ::shutdown(listener_.get(), SHUT_RDWR);
  thread_.join();
  for (std::thread& relay : relays_) relay.join();
}

std::string LoopbackProxy::address(const std::string& scheme) const {
  return scheme + "://127.0.0.1:" + std::to_string(port_);
}

std::vector<std::string> LoopbackProxy::asked() const {
  const std::lock_guard lock(mutex_);
  return asked_;
}

void LoopbackProxy::serve() {
  for (;;) {
    auto client =
        std::make_shared<FileDescriptor>(::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!client->valid()) return;
    relays_.emplace_back([this, client] { answer(*client); });
  }
}

void LoopbackProxy::answer(const FileDescriptor& client) {
  const std::string head = readHead(client);
  {
    const std::lock_guard lock(mutex_);
    asked_.push_back(head.substr(0, head.find("\r\n")));
  }
  if (answer_ == Answer::Refuses) return send(client, "HTTP/1.1 403 Forbidden\r\nContent-Length: 0\r\n\r\n");
  const FileDescriptor server = connectTo(target_);
  if (!server.valid()) return;
  send(client, "HTTP/1.1 200 Connected\r\n\r\n");
  relay(client, server);
}

}  // namespace web_view_test

#include "tests/tools/raw_client.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <array>

namespace tools_test {

RawClient::RawClient(int port) : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<in_port_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (::connect(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
    socket_.reset();
}

bool RawClient::send(std::string_view text) const {
  return ::send(socket_.get(), text.data(), text.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(text.size());
}

RawClient::Answer RawClient::read(std::chrono::milliseconds silence, std::size_t maxBytes) const {
  Answer answer;
  std::array<char, 65536> block{};
  while (answer.text.size() < maxBytes) {
    pollfd watched{socket_.get(), POLLIN, 0};
    if (::poll(&watched, 1, static_cast<int>(silence.count())) != 1) break;
    const ssize_t count = ::recv(socket_.get(), block.data(), block.size(), 0);
    if (count <= 0) {
      answer.end = count == 0 ? End::Closed : End::Reset;
      break;
    }
    answer.text.append(block.data(), static_cast<std::size_t>(count));
  }
  return answer;
}

}  // namespace tools_test

#include "tests/harness/servers/loopback_listener.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <stdexcept>
#include <utility>

namespace test_support {

LoopbackListener listenOnLoopback(int receiveBuffer) {
  FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  if (receiveBuffer > 0)
    ::setsockopt(socket.get(), SOL_SOCKET, SO_RCVBUF, &receiveBuffer, sizeof receiveBuffer);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* generic = reinterpret_cast<sockaddr*>(&address);
  if (::bind(socket.get(), generic, size) != 0 || ::listen(socket.get(), 64) != 0 ||
      ::getsockname(socket.get(), generic, &size) != 0)
    throw std::runtime_error("cannot listen on the loopback interface");
  return {std::move(socket), ntohs(address.sin_port)};
}

}  // namespace test_support

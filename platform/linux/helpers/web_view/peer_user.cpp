#include "platform/linux/helpers/web_view/peer_user.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

namespace helpers {
namespace {

using NameOfEnd = int (*)(int, sockaddr*, socklen_t*);

// Formats an address as /proc/net/tcp does: the IPv4 address as a number in memory byte order, the port in
// host byte order.
std::string endText(const platform::FileDescriptor& socket, NameOfEnd nameOfEnd) {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  if (nameOfEnd(socket.get(), reinterpret_cast<sockaddr*>(&address), &size) != 0) return {};
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%08X:%04X", address.sin_addr.s_addr, ntohs(address.sin_port));
  return text.data();
}

}  // namespace

// Searches /proc/net/tcp, because SO_PEERCRED works only with Unix sockets.
bool comesFromThisUser(const platform::FileDescriptor& client) {
  const std::string peer = endText(client, ::getpeername);
  const std::string own = endText(client, ::getsockname);
  std::ifstream table("/proc/self/net/tcp");
  for (std::string line; !peer.empty() && std::getline(table, line);) {
    std::istringstream fields(line);
    std::string slot, local, remote, state, queues, timer, retransmits;
    uid_t user = 0;
    fields >> slot >> local >> remote;
    if (local != peer || remote != own) continue;
    return (fields >> state >> queues >> timer >> retransmits >> user) && user == ::geteuid();
  }
  return false;
}

}  // namespace helpers

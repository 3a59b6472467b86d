#include "tests/harness/processes/log_socket.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <string_view>
#include <utility>

namespace test_support {
namespace {

constexpr std::size_t kMaxMessageLength = 1 << 16;

std::chrono::system_clock::time_point sendingTime(msghdr& header) {
  for (cmsghdr* part = CMSG_FIRSTHDR(&header); part != nullptr; part = CMSG_NXTHDR(&header, part)) {
    if (part->cmsg_level != SOL_SOCKET || part->cmsg_type != SCM_TIMESTAMPNS) continue;
    timespec time{};
    std::memcpy(&time, CMSG_DATA(part), sizeof time);
    return std::chrono::system_clock::time_point(std::chrono::seconds(time.tv_sec) +
                                                 std::chrono::nanoseconds(time.tv_nsec));
  }
  return std::chrono::system_clock::now();
}

SyslogMessage messageOf(std::string_view datagram) {
  return parseSyslogMessage(datagram).value_or(SyslogMessage{.priority = -1, .text = std::string(datagram)});
}

}  // namespace

LogSocket::LogSocket(std::string path) : path_(std::move(path)) {
  if (path_.empty()) return;
  FileDescriptor fd(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  const int on = 1;
  ::setsockopt(fd.get(), SOL_SOCKET, SO_TIMESTAMPNS, &on, sizeof on);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path_.copy(address.sun_path, sizeof address.sun_path - 1);
  if (::bind(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) return;
  ::chmod(path_.c_str(), 0666);
  fd_ = std::move(fd);
}

LogSocket::~LogSocket() {
  if (valid()) ::unlink(path_.c_str());
}

std::optional<LogSocket::Received> LogSocket::receive() {
  std::string datagram(kMaxMessageLength, '\0');
  alignas(cmsghdr) std::array<char, 256> control{};
  iovec vector{datagram.data(), datagram.size()};
  msghdr header{};
  header.msg_iov = &vector;
  header.msg_iovlen = 1;
  header.msg_control = control.data();
  header.msg_controllen = control.size();
  const ssize_t length = ::recvmsg(fd_.get(), &header, 0);
  if (length < 0) return std::nullopt;
  datagram.resize(static_cast<std::size_t>(length));
  return Received{messageOf(datagram), sendingTime(header)};
}

}  // namespace test_support

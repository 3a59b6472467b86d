#include "tools/productserver/connection.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace tools {
namespace {

constexpr Connection::Milliseconds kTimeout{5000};
constexpr int kForever = -1;
constexpr std::size_t kMaxHeadLength = 65536;
constexpr std::size_t kBlock = 65536;

}  // namespace

// Returns true if one of the events occurred; the end of the connection counts as every event.
bool Connection::waitFor(short events, int timeout) const {
  std::array<pollfd, 2> watched = {{{socket_.get(), events, 0}, {stopDescriptor_, POLLIN, 0}}};
  int ready = 0;
  do {
    ready = ::poll(watched.data(), watched.size(), timeout);
  } while (ready == -1 && errno == EINTR);
  return ready > 0 && watched[1].revents == 0;
}

ssize_t Connection::receive(char* buffer, std::size_t size, Milliseconds timeout) {
  if (!waitFor(POLLIN, static_cast<int>(timeout.count()))) return -1;
  return ::recv(socket_.get(), buffer, size, MSG_DONTWAIT);
}

bool Connection::readAhead(std::string_view mark, std::size_t more, Milliseconds timeout) {
  std::array<char, 4096> block{};
  while (true) {
    const std::size_t found = ahead().find(mark);
    if (found != ahead().npos && ahead().size() >= found + mark.size() + more) return true;
    if (ahead().size() >= kMaxHeadLength) return false;
    const ssize_t count = receive(block.data(), block.size(), timeout);
    if (count <= 0) return false;
    ahead_.append(block.data(), static_cast<std::size_t>(count));
  }
}

bool Connection::send(std::string_view text) {
  return write(text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

bool Connection::pause(Milliseconds time) const {
  std::array<pollfd, 2> watched = {{{socket_.get(), POLLRDHUP, 0}, {stopDescriptor_, POLLIN, 0}}};
  return ::poll(watched.data(), watched.size(), static_cast<int>(time.count())) == 0;
}

void Connection::waitForEnd() const {
  static_cast<void>(waitFor(POLLRDHUP, kForever));
}

void Connection::reset() {
  const linger hard{1, 0};
  ::setsockopt(socket_.get(), SOL_SOCKET, SO_LINGER, &hard, sizeof hard);
  socket_.reset();
}

// close(2) with unread bytes in the receive buffer resets the connection, and the client may lose data that
// was just sent. So read until the client closes.
void Connection::closeGently() {
  constexpr std::chrono::seconds kMaxTime{1};
  const auto end = std::chrono::steady_clock::now() + kMaxTime;
  std::array<char, 4096> rest{};
  ::shutdown(socket_.get(), SHUT_WR);
  while (std::chrono::steady_clock::now() < end && receive(rest.data(), rest.size(), kMaxTime) > 0) {
  }
  socket_.reset();
}

bool Connection::is_readable() const {
  return !ahead().empty() || waitFor(POLLIN, static_cast<int>(kTimeout.count()));
}

bool Connection::is_writable() const {
  return waitFor(POLLOUT, static_cast<int>(kTimeout.count()));
}

ssize_t Connection::read(char* buffer, std::size_t size) {
  if (ahead().empty()) {
    consumed_ = 0;
    ahead_.resize(kBlock);
    const ssize_t count = receive(ahead_.data(), ahead_.size(), kTimeout);
    ahead_.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    if (count <= 0) return count;
  }
  const std::size_t taken = ahead().copy(buffer, size);
  consumed_ += taken;
  return static_cast<ssize_t>(taken);
}

ssize_t Connection::write(const char* data, std::size_t size) {
  std::size_t sent = 0;
  while (sent < size) {
    if (!waitFor(POLLOUT, kForever)) return -1;
    const ssize_t count = ::send(socket_.get(), data + sent, size - sent, MSG_DONTWAIT | MSG_NOSIGNAL);
    if (count == -1 && errno != EAGAIN && errno != EINTR) return -1;
    sent += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
  }
  return static_cast<ssize_t>(size);
}

// The server listens on loopback only, and no code uses the peer's address.
void Connection::get_remote_ip_and_port(std::string& ip, int& port) const {
  ip = "127.0.0.1";
  port = -1;
}

void Connection::get_local_ip_and_port(std::string& ip, int& port) const {
  get_remote_ip_and_port(ip, port);
}

}  // namespace tools

#include "platform/linux/helpers/web_view/relay.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstddef>

namespace helpers {
namespace {

bool isTemporary(int error) {
  return error == EAGAIN || error == EINTR;
}

// One direction of a connection and its buffer of bytes that have been read but not written.
class Way {
 public:
  Way(int from, int to) : from_(from), to_(to) {}

  [[nodiscard]] bool wantsToRead() const { return !ended_ && begin_ == end_; }
  [[nodiscard]] bool wantsToWrite() const { return begin_ < end_; }
  [[nodiscard]] bool isDone() const { return ended_ && begin_ == end_; }

  // Reads and writes as far as possible without blocking. Returns false on an error.
  [[nodiscard]] bool move() {
    if (wantsToRead() && !read()) return false;
    return !wantsToWrite() || write();
  }

 private:
  bool read() {
    const ssize_t count = ::recv(from_, buffer_.data(), buffer_.size(), 0);
    if (count < 0) return isTemporary(errno);
    begin_ = 0;
    end_ = static_cast<std::size_t>(count);
    ended_ = count == 0;
    return true;
  }
  bool write() {
    const ssize_t count = ::send(to_, buffer_.data() + begin_, end_ - begin_, MSG_NOSIGNAL);
    if (count < 0) return isTemporary(errno);
    begin_ += static_cast<std::size_t>(count);
    return true;
  }

  int from_;
  int to_;
  std::array<char, 16384> buffer_{};
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  bool ended_ = false;
};

short eventsFor(const Way& in, const Way& out) {
  return static_cast<short>((in.wantsToRead() ? POLLIN : 0) | (out.wantsToWrite() ? POLLOUT : 0));
}

// Ignores a socket without requested events (fd -1): poll would report its POLLHUP anyway, in a busy loop.
pollfd watched(int socket, short events) {
  return {events == 0 ? -1 : socket, events, 0};
}

}  // namespace

void relay(const platform::FileDescriptor& one, const platform::FileDescriptor& other) {
  for (const int socket : {one.get(), other.get()}) ::fcntl(socket, F_SETFL, O_NONBLOCK);
  Way there(one.get(), other.get());
  Way back(other.get(), one.get());
  while (!there.isDone() && !back.isDone()) {
    std::array<pollfd, 2> ends{
        {watched(one.get(), eventsFor(there, back)), watched(other.get(), eventsFor(back, there))}};
    if (::poll(ends.data(), ends.size(), -1) < 0 && errno != EINTR) return;
    if (!there.move() || !back.move()) return;
  }
}

}  // namespace helpers

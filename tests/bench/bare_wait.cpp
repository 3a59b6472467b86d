// bare_wait: calls select() with a timeout of 30 ms in a loop, like the agent's listener thread.

#include <fcntl.h>
#include <sys/select.h>
#include <sys/stat.h>

int main() {
  constexpr const char* fifo = "/tmp/BareWait";
  if (::mkfifo(fifo, 0600) != 0) return 2;
  const int pipe = ::open(fifo, O_RDWR | O_NONBLOCK | O_CLOEXEC);
  if (pipe == -1) return 2;
  for (int ready = 0; ready == 0;) {
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(pipe, &readable);
    timeval wait{0, 30'000};
    ready = ::select(pipe + 1, &readable, nullptr, nullptr, &wait);
  }
}

// Measures sendPipeMsg() without its pause against the bare system calls with the same pause.

#include <fcntl.h>
#include <sys/select.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <stop_token>
#include <thread>

#include "ipc/command_pipe.h"
#include "tests/bench/pairs.h"
#include "tests/harness/processes/message_fifo.h"

namespace {

using namespace std::chrono_literals;

constexpr const char* fifo = "/tmp/KMPIPE";
constexpr int pairs = 101;
constexpr auto pause = 10ms;

void ours() {
  if (sendPipeMsg("-m") != 0) std::abort();
}

void bare() {
  const int pipe = ::open(fifo, O_WRONLY | O_NONBLOCK);
  timeval wait{0, 10'000};
  fd_set readable;
  FD_ZERO(&readable);
  FD_SET(pipe, &readable);
  ::select(pipe + 1, &readable, nullptr, nullptr, &wait);
  if (::write(pipe, "-m", 2) != 2) std::abort();
  ::close(pipe);
}

double beyondPause(const std::function<void()>& send) {
  const auto begin = std::chrono::steady_clock::now();
  send();
  const auto took = std::chrono::steady_clock::now() - begin - pause;
  return std::chrono::duration<double, std::micro>(took).count();
}

}  // namespace

int main() {
  test_support::MessageFifo pipe(fifo);
  if (!pipe.valid()) return 1;
  const std::jthread reader([&](const std::stop_token& stop) {
    while (!stop.stop_requested()) {
      static_cast<void>(pipe.receive());
      std::this_thread::sleep_for(50ms);
    }
  });
  bench::print({.what = "sendPipeMsg, beyond its 10 ms pause",
                .unit = "us",
                .pairs = bench::runPairs(
                    pairs, [] { return beyondPause(ours); }, [] { return beyondPause(bare); })});
}

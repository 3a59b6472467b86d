#include "tests/harness/processes/child_process.h"

#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "tests/harness/processes/spawn.h"

namespace test_support {
namespace {

using Clock = std::chrono::steady_clock;

int millisecondsUntil(Clock::time_point deadline) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
  return static_cast<int>(std::max<decltype(left)>(left, 0));
}

// Blocks SIGPIPE, which a write to a closed pipe would raise in the test program.
class SigpipeHeld {
 public:
  SigpipeHeld() {
    sigemptyset(&set_);
    sigaddset(&set_, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &set_, &before_);
  }
  SigpipeHeld(const SigpipeHeld&) = delete;
  SigpipeHeld& operator=(const SigpipeHeld&) = delete;
  ~SigpipeHeld() {
    const timespec now{};
    while (sigtimedwait(&set_, nullptr, &now) == SIGPIPE) continue;
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }

 private:
  sigset_t set_{};
  sigset_t before_{};
};

}  // namespace

void ChildProcess::Capture::drain() {
  std::array<char, 65536> buffer;
  while (fd.valid()) {
    const ssize_t count = ::read(fd.get(), buffer.data(), buffer.size());
    if (count > 0) {
      text.append(buffer.data(), static_cast<std::size_t>(count));
    } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
      fd.reset();
    } else if (errno == EAGAIN) {
      return;
    }
  }
}

std::optional<std::string> ChildProcess::Capture::takeLine() {
  const std::size_t end = text.find('\n');
  if (end == std::string::npos && (fd.valid() || text.empty())) return std::nullopt;
  const std::string line = text.substr(0, end);
  text.erase(0, end == std::string::npos ? end : end + 1);
  return line;
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept {
  *this = std::move(other);
}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept {
  std::swap(pid_, other.pid_);
  std::swap(handle_, other.handle_);
  std::swap(status_, other.status_);
  std::swap(input_, other.input_);
  std::swap(output_, other.output_);
  std::swap(error_, other.error_);
  return *this;
}

ChildProcess::~ChildProcess() {
  kill();
  if (handle_.valid()) ::waitpid(pid_, nullptr, 0);
}

bool ChildProcess::start(const std::vector<std::string>& argv, const ChildOptions& options) {
  { const ChildProcess previous = std::exchange(*this, ChildProcess()); }
  Spawned child = spawn(argv, options);
  if (child.pid < 0) return false;
  pid_ = child.pid;
  // Called by number, because the header of Debian 12 declares pidfd_open with C++ linkage.
  handle_.reset(static_cast<int>(::syscall(SYS_pidfd_open, pid_, 0)));
  input_ = std::move(child.input);
  output_.fd = std::move(child.output);
  error_.fd = std::move(child.error);
  return handle_.valid();
}

bool ChildProcess::running() {
  reapIfEnded();
  return handle_.valid();
}

std::optional<ExitStatus> ChildProcess::wait(std::chrono::milliseconds timeout) {
  const auto deadline = Clock::now() + timeout;
  while (running() && Clock::now() < deadline) takeIn(deadline);
  output_.drain();
  error_.drain();
  return status_;
}

void ChildProcess::signal(int number) {
  if (handle_.valid()) ::kill(pid_, number);
}

void ChildProcess::terminate() {
  signal(SIGTERM);
}

void ChildProcess::kill() {
  signal(SIGKILL);
}

std::optional<std::string> ChildProcess::readLine(std::chrono::milliseconds timeout) {
  return readLineOf(output_, timeout);
}

std::optional<std::string> ChildProcess::readErrorLine(std::chrono::milliseconds timeout) {
  return readLineOf(error_, timeout);
}

std::optional<std::string> ChildProcess::readLineOf(Capture& capture, std::chrono::milliseconds timeout) {
  const auto deadline = Clock::now() + timeout;
  capture.drain();
  std::optional<std::string> line = capture.takeLine();
  while (!line && capture.fd.valid() && Clock::now() < deadline) {
    takeIn(deadline);
    line = capture.takeLine();
  }
  return line;
}

std::string ChildProcess::takeOutput() {
  output_.drain();
  return std::exchange(output_.text, {});
}

std::string ChildProcess::takeErrorOutput() {
  error_.drain();
  return std::exchange(error_.text, {});
}

bool ChildProcess::writeLine(std::string_view line) {
  const SigpipeHeld held;
  const std::string whole = std::string(line) + "\n";
  std::size_t written = 0;
  while (written < whole.size()) {
    const ssize_t count = ::write(input_.get(), whole.data() + written, whole.size() - written);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    written += static_cast<std::size_t>(count);
  }
  return true;
}

void ChildProcess::closeInput() {
  input_.reset();
}

// Waits until the child has written or ended, and reads its output.
void ChildProcess::takeIn(Clock::time_point deadline) {
  std::array<pollfd, 3> entries{
      {{output_.fd.get(), POLLIN, 0}, {error_.fd.get(), POLLIN, 0}, {-1, POLLIN, 0}}};
  if (!status_) entries[2].fd = handle_.get();
  ::poll(entries.data(), entries.size(), millisecondsUntil(deadline));
  output_.drain();
  error_.drain();
  reapIfEnded();
}

void ChildProcess::reapIfEnded() {
  if (!handle_.valid()) return;
  int raw = 0;
  if (::waitpid(pid_, &raw, WNOHANG) != pid_) return;
  handle_.reset();
  status_ = WIFEXITED(raw) ? ExitStatus{.code = WEXITSTATUS(raw)} : ExitStatus{.signal = WTERMSIG(raw)};
}

}  // namespace test_support

#include "platform/linux/web_view/web_view_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include <QCoreApplication>
#include <QSocketNotifier>

#include "platform/descriptors.h"
#include "platform/linux/processes/pidfd.h"
#include "platform/portable/spawn_attributes.h"

namespace platform {
namespace {

constexpr std::size_t maxAddressLength = std::size_t{64} * 1024;

// Starts the program in its own session, so that Ctrl-C in the agent's terminal does not interrupt the last
// page load.
pid_t spawn(std::string program, int input) {
  const SpawnAttributes attributes(POSIX_SPAWN_SETSID);
  SpawnStreams streams;
  streams.set(STDIN_FILENO, input);
  // Discards the program's output: it may outlive the readers of the agent's own streams.
  streams.lead(STDOUT_FILENO, "/dev/null", O_WRONLY);
  streams.set(STDERR_FILENO, STDOUT_FILENO);
  char* arguments[] = {program.data(), nullptr};
  pid_t child = -1;
  const int error = posix_spawn(&child, program.c_str(), streams.get(), attributes.get(), arguments, environ);
  return error == 0 ? child : -1;
}

std::shared_ptr<const FileDescriptor> openHandle(pid_t child) {
  return std::make_shared<const FileDescriptor>(openPidfd(child));
}

bool hasEnded(const FileDescriptor& handle) {
  pollfd end{handle.get(), POLLIN, 0};
  return ::poll(&end, 1, 0) != 0;
}

// Reaps the child from the run loop, without blocking, even if the socket to it has been closed before.
void reapOnceEnded(pid_t child, const std::shared_ptr<const FileDescriptor>& handle) {
  auto* notifier = new QSocketNotifier(handle->get(), QSocketNotifier::Read, QCoreApplication::instance());
  QObject::connect(notifier, &QSocketNotifier::activated, notifier, [notifier, child, handle] {
    notifier->setEnabled(false);
    ::waitpid(child, nullptr, WNOHANG);
    notifier->deleteLater();
  });
}

}  // namespace

void WebViewProcess::send(const std::string& program, const std::string& address) {
  if (address.size() > maxAddressLength || address.find('\n') != std::string::npos) return;
  const std::string line = address + '\n';
  reapUnwatched();
  if (isStuck()) end();
  if (!write(line) && start(program)) static_cast<void>(write(line));
}

// Returns false if the peer has closed the socket. SOCK_SEQPACKET delivers each line whole or not at all. A
// line that does not fit into the socket buffer is dropped: a new program would not receive it either.
bool WebViewProcess::write(const std::string& line) {
  const ssize_t written = ::send(line_.get(), line.data(), line.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
  if (written < 0) return errno == EAGAIN || errno == ENOBUFS || errno == ENOMEM || errno == EMSGSIZE;
  if (!unreadSince_) unreadSince_ = Clock::now();
  return true;
}

bool WebViewProcess::start(const std::string& program) {
  line_.reset();
  unreadSince_.reset();
  std::array<int, 2> ends{-1, -1};
  if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) return false;
  FileDescriptor own(ends[0]);
  const FileDescriptor programs(ends[1]);
  pid_ = spawn(program, programs.get());
  if (pid_ < 0) return false;
  line_ = std::move(own);
  handle_ = openHandle(pid_);
  if (handle_->valid()) {
    reapOnceEnded(pid_, handle_);
  } else {
    unwatched_.push_back(pid_);
  }
  return true;
}

bool WebViewProcess::isStuck() {
  if (!line_.valid() || unacknowledgedBytes(line_.get()).value_or(0) == 0) unreadSince_.reset();
  return unreadSince_ && Clock::now() - *unreadSince_ > unreadTimeout_;
}

// Returns whether the program may still run. If so, it has not been reaped, and its pid cannot have been
// reused.
bool WebViewProcess::isRunning() const {
  if (handle_ != nullptr && handle_->valid()) return !hasEnded(*handle_);
  return std::ranges::find(unwatched_, pid_) != unwatched_.end();
}

// Kills the program's whole process group and closes the socket.
void WebViewProcess::end() {
  if (isRunning()) ::kill(-pid_, SIGKILL);
  line_.reset();
}

void WebViewProcess::reapUnwatched() {
  std::erase_if(unwatched_, [](pid_t child) { return ::waitpid(child, nullptr, WNOHANG) != 0; });
}

}  // namespace platform

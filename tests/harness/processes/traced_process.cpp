#include "tests/harness/processes/traced_process.h"

#include <signal.h>
#include <sys/ptrace.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <thread>

#include "tests/harness/processes/wait_until.h"

namespace {

constexpr int kSystemCall = SIGTRAP | 0x80;

long request(int what, pid_t process, long data) {
  return ::ptrace(static_cast<__ptrace_request>(what), process, 0, data);
}

// Returns the system call at whose entry the process has stopped, or nullopt for another stop.
std::optional<__ptrace_syscall_info> callAt(pid_t process, int status) {
  __ptrace_syscall_info call{};
  if (WSTOPSIG(status) != kSystemCall ||
      ::ptrace(PTRACE_GET_SYSCALL_INFO, process, sizeof call, &call) <= 0 ||
      call.op != PTRACE_SYSCALL_INFO_ENTRY)
    return std::nullopt;
  return call;
}

// Reads `length` + 1 bytes from the memory of the process. Returns fewer if they cannot be read.
std::string textIn(pid_t process, std::uint64_t address, std::size_t length) {
  std::string text(length + 1, 'x');
  const iovec here{text.data(), text.size()};
  const iovec there{reinterpret_cast<void*>(address), text.size()};
  const ssize_t count = ::process_vm_readv(process, &here, 1, &there, 1, 0);
  text.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
  return text;
}

// Returns the signal to deliver when the process continues, or 0 for a stop caused by tracing.
int pendingSignal(int status) {
  const bool isOurs = WSTOPSIG(status) == kSystemCall || status >> 16 != 0;
  return isOurs ? 0 : WSTOPSIG(status);
}

}  // namespace

TracedProcess::TracedProcess(pid_t process) : process_(process) {
  held_ = request(PTRACE_SEIZE, process_, PTRACE_O_TRACESYSGOOD) == 0 &&
          request(PTRACE_INTERRUPT, process_, 0) == 0 && ::waitpid(process_, nullptr, __WALL) == process_;
}

void TracedProcess::letGo() {
  if (held_) request(PTRACE_DETACH, process_, 0);
  held_ = false;
}

bool TracedProcess::runToEndOfReading() {
  return runToCall([](const __ptrace_syscall_info& call) {
    return call.entry.nr == SYS_shutdown && call.entry.args[1] == SHUT_RD;
  });
}

bool TracedProcess::runToOpenOf(const std::string& name) {
  return runToCall([&](const __ptrace_syscall_info& call) {
    return call.entry.nr == SYS_openat && textIn(process_, call.entry.args[1], name.size()) == name + '\0';
  });
}

bool TracedProcess::runToCall(const std::function<bool(const __ptrace_syscall_info&)>& isAwaited) {
  const auto deadline = std::chrono::steady_clock::now() + test_support::kPatience;
  int status = 0;
  pid_t stopped = process_;
  while (held_ && std::chrono::steady_clock::now() < deadline) {
    if (stopped == process_) held_ = request(PTRACE_SYSCALL, process_, pendingSignal(status)) == 0;
    std::this_thread::yield();
    stopped = ::waitpid(process_, &status, WNOHANG | __WALL);
    if (stopped != process_) continue;
    held_ = held_ && WIFSTOPPED(status);
    const auto call = held_ ? callAt(process_, status) : std::nullopt;
    if (call && isAwaited(*call)) return true;
  }
  return false;
}

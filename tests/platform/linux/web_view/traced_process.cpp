#include "tests/platform/linux/web_view/traced_process.h"

#include <signal.h>
#include <sys/ptrace.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <chrono>
#include <thread>

#include "tests/harness/processes/wait_until.h"

namespace {

constexpr int kSystemCall = SIGTRAP | 0x80;

long request(int what, pid_t process, long data) {
  return ::ptrace(static_cast<__ptrace_request>(what), process, 0, data);
}

bool isAtEndOfReading(pid_t process, int status) {
  __ptrace_syscall_info call{};
  return WSTOPSIG(status) == kSystemCall &&
         ::ptrace(PTRACE_GET_SYSCALL_INFO, process, sizeof call, &call) > 0 &&
         call.op == PTRACE_SYSCALL_INFO_ENTRY && call.entry.nr == SYS_shutdown &&
         call.entry.args[1] == SHUT_RD;
}

// The signal that stopped the process and is still to reach it; 0 where it was something else.
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
  const auto deadline = std::chrono::steady_clock::now() + test_support::kPatience;
  int status = 0;
  pid_t stopped = process_;
  while (held_ && std::chrono::steady_clock::now() < deadline) {
    if (stopped == process_) held_ = request(PTRACE_SYSCALL, process_, pendingSignal(status)) == 0;
    std::this_thread::yield();
    stopped = ::waitpid(process_, &status, WNOHANG | __WALL);
    if (stopped != process_) continue;
    held_ = held_ && WIFSTOPPED(status);
    if (held_ && isAtEndOfReading(process_, status)) return true;
  }
  return false;
}

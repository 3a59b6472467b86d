#include "tests/harness/processes/forked_call.h"

#include <grp.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <iterator>

#include "tests/harness/processes/stream_capture.h"

namespace test_support {
namespace {

pid_t fork(const std::function<int()>& function, const FileDescriptor& output, const FileDescriptor& error) {
  std::fflush(nullptr);
  const pid_t pid = ::fork();
  if (pid != 0) return pid;
  ::dup2(output.get(), STDOUT_FILENO);
  ::dup2(error.get(), STDERR_FILENO);
  const int status = function();
  std::fflush(stdout);
  ::_exit(status);
}

std::string describe(const std::optional<ExitStatus>& status) {
  if (!status) return "did not end";
  return status->code ? "exit " + std::to_string(*status->code) : "signal " + std::to_string(*status->signal);
}

}  // namespace

void PrintTo(const Finished& finished, std::ostream* stream) {
  *stream << describe(finished.status) << "\noutput: " << finished.output << "\nerror: " << finished.error;
}

ForkedCall::ForkedCall(const std::function<int()>& function)
    : output_(memoryFile()), error_(memoryFile()), pid_(fork(function, output_, error_)) {}

ForkedCall::~ForkedCall() {
  if (status_ || pid_ <= 0) return;
  ::kill(pid_, SIGKILL);
  ::waitpid(pid_, nullptr, 0);
}

Finished ForkedCall::wait(std::chrono::milliseconds timeout) {
  static_cast<void>(waitUntil([this] { return reaped(); }, timeout));
  return {status_, contentsOf(output_), contentsOf(error_)};
}

bool ForkedCall::reaped() {
  int raw = 0;
  if (!status_ && ::waitpid(pid_, &raw, WNOHANG) == pid_) {
    status_ = WIFEXITED(raw) ? ExitStatus{.code = WEXITSTATUS(raw)} : ExitStatus{.signal = WTERMSIG(raw)};
  }
  return status_.has_value();
}

Finished runForked(const std::function<int()>& function) {
  return ForkedCall(function).wait();
}

bool wasUnavailable(const Finished& finished) {
  return finished.status == ExitStatus{.code = kUnavailable};
}

bool becomeNobody() {
  return ::setgroups(0, nullptr) == 0 && ::setresgid(kNobody, kNobody, kNobody) == 0 &&
         ::setresuid(kNobody, kNobody, kNobody) == 0 &&
         // Changing the user makes the process non-dumpable, which denies access to /proc/self.
         ::prctl(PR_SET_DUMPABLE, 1) == 0;
}

int openDescriptors() {
  const std::filesystem::directory_iterator entries("/proc/self/fd");
  // The directory iterator itself holds one descriptor.
  return static_cast<int>(std::distance(begin(entries), end(entries))) - 1;
}

}  // namespace test_support

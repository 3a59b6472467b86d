// Builds that count lines lead the ends of a process that pass the C library's own by to here.

#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <time.h>
#include <unistd.h>

extern "C" {
void __gcov_dump();  // NOLINT(bugprone-reserved-identifier): the compiler's own
[[noreturn]] void endAtOnce(int status) __asm__("__real__exit");
int sendSignal(pid_t process, int signal) __asm__("__real_kill");
[[noreturn]] void underscoreExit(int status) __asm__("__wrap__exit");
[[noreturn]] void standardExit(int status) __asm__("__wrap__Exit");
int kill(pid_t process, int signal) noexcept  // NOLINT(readability-redundant-declaration): under another name
    __asm__("__wrap_kill");
}

namespace {

constexpr int kWriteCounts = 60;  // a real-time signal that nobody else uses
constexpr timespec kTimeToWrite{0, 200'000'000};
const uid_t user = ::geteuid();

// A process whose files may not grow would damage what earlier ones have counted, and one that has become
// another user would complain.
void writeCounts() {
  rlimit limit{};
  if (::getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur != RLIM_INFINITY) return;
  if (::geteuid() == user) __gcov_dump();
}

[[gnu::constructor]] void listenForTheEnd() {
  ::signal(kWriteCounts, [](int) { writeCounts(); });
}

}  // namespace

void underscoreExit(int status) {
  writeCounts();
  endAtOnce(status);
}

void standardExit(int status) {
  writeCounts();
  endAtOnce(status);
}

// Who is to be killed gets a moment to write what it has counted. Who counts nothing ends at once.
int kill(pid_t process, int signal) noexcept {
  if (signal != SIGKILL || sendSignal(process, kWriteCounts) != 0) return sendSignal(process, signal);
  ::nanosleep(&kTimeToWrite, nullptr);
  sendSignal(process, signal);
  return 0;
}

// For coverage builds: writes the line counts before _exit(2), _Exit(3) and SIGKILL, which bypass exit
// handlers.

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

constexpr int kWriteCounts = 60;  // an otherwise unused real-time signal
constexpr timespec kTimeToWrite{0, 200'000'000};
const uid_t user = ::geteuid();

// Writing under RLIMIT_FSIZE would truncate counts that are already in the files, and a process that has
// changed its user may not write them.
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

// Gives a process that is to be killed time to write its counts. A process without counts dies from the first
// signal.
int kill(pid_t process, int signal) noexcept {
  if (signal != SIGKILL || sendSignal(process, kWriteCounts) != 0) return sendSignal(process, signal);
  ::nanosleep(&kTimeToWrite, nullptr);
  sendSignal(process, signal);
  return 0;
}

#include "platform/linux/application/process_start.h"

#include <linux/close_range.h>
#include <malloc.h>
#include <signal.h>
#include <syslog.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <new>

#include "platform/linux/application/signal_pipe.h"
#include "platform/log.h"
#include "platform/portable/standard_streams.h"

namespace platform {
namespace {

// The default terminate handler aborts with SIGABRT and prints only to standard error, which usually goes
// unread.
[[noreturn]] void terminateHandler() {
  try {
    std::rethrow_exception(std::current_exception());
  } catch (const std::bad_alloc&) {
    fatalError("out of memory");
  } catch (const std::exception& error) {
    fatalError(error.what());
  } catch (...) {
    fatalError("unknown exception");
  }
}

}  // namespace

void prepareProcess() {
  std::set_terminate(terminateHandler);
  fillStandardStreams();
  ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
  const sigset_t endings = terminationSignals();
  sigprocmask(SIG_SETMASK, &endings, nullptr);
  ::signal(SIGPIPE, SIG_IGN);
  // Images are allocated and freed with each notice. Allocate them with mmap, so that freed images return to
  // the system instead of leaving holes in the heap. Setting the threshold also turns off its dynamic
  // adjustment.
  ::mallopt(M_MMAP_THRESHOLD, 128 * 1024);
  // A single arena, because memory that one thread allocates and another frees would fragment several.
  ::mallopt(M_ARENA_MAX, 1);
  ::openlog("TovalinTray", LOG_PID, LOG_USER);
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
}

}  // namespace platform

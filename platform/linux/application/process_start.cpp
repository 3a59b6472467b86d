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

// In the words of the C++ library the end is SIGABRT, and nobody reads what it says of it.
[[noreturn]] void endUncaught() {
  try {
    std::rethrow_exception(std::current_exception());
  } catch (const std::bad_alloc&) {
    fatalError("out of memory");
  } catch (const std::exception& error) {
    fatalError(error.what());
  } catch (...) {
    fatalError("an error of an unknown kind");
  }
}

}  // namespace

void prepareProcess() {
  std::set_terminate(endUncaught);
  fillStandardStreams();
  ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
  const sigset_t endings = endingSignals();
  sigprocmask(SIG_SETMASK, &endings, nullptr);
  ::signal(SIGPIPE, SIG_IGN);
  // Pictures come and go with each notice: kept out of the heap, where small things that stay would hold
  // their room.
  ::mallopt(M_MMAP_THRESHOLD, 128 * 1024);
  // One heap for all threads: what one makes and another frees would spread over theirs.
  ::mallopt(M_ARENA_MAX, 1);
  ::openlog("TovalinTray", LOG_PID, LOG_USER);
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
}

}  // namespace platform

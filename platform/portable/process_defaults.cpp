#include "platform/portable/process_defaults.h"

#include <signal.h>
#include <syslog.h>

#include <cstdio>
#include <exception>
#include <new>

#include "platform/log.h"
#include "platform/portable/standard_streams.h"

namespace platform {
namespace {

[[noreturn]] void terminateHandler() {
  try {
    if (const auto error = std::current_exception()) std::rethrow_exception(error);
  } catch (const std::bad_alloc&) {
    fatalError("out of memory");
  } catch (const std::exception& error) {
    fatalError(error.what());
  } catch (...) {
    fatalError("unknown exception");
  }
  fatalError("terminated without an exception");
}

}  // namespace

void setProcessDefaults() {
  std::set_terminate(terminateHandler);
  fillStandardStreams();
  ::signal(SIGPIPE, SIG_IGN);
  ::openlog("TovalinTray", LOG_PID, LOG_USER);  // frozen: doc/compatibility.md
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
}

}  // namespace platform

#include "platform/macos/application/process_start.h"

#include <signal.h>
#include <syslog.h>

#include <cstdio>
#include <exception>
#include <new>

#include "platform/log.h"
#include "platform/macos/application/termination_signals.h"
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
  }
  fatalError("unknown exception");
}

}  // namespace

void prepareProcess() {
  std::set_terminate(terminateHandler);
  fillStandardStreams();
  blockTerminationSignals();
  ::signal(SIGPIPE, SIG_IGN);
  ::openlog("TovalinTray", LOG_PID, LOG_USER);
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
}

}  // namespace platform

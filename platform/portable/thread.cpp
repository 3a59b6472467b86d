#include "platform/thread.h"

#include <signal.h>

#include <system_error>
#include <thread>

#include "platform/log.h"

namespace platform {

void detachNewThread(std::function<void()> body) {
  sigset_t all, before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  try {
    std::thread(std::move(body)).detach();
  } catch (const std::system_error& error) {
    consoleLog(std::string("cannot start a thread: ") + error.what());
  }
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace platform

#include "platform/application.h"

#include <unistd.h>

#include <cstdio>
#include <utility>

#include "platform/macos/application/application_impl.h"

namespace platform {

Application::Application() : impl_(std::make_unique<Impl>()) {}

Application& Application::sharedApplication() {
  static Application& application = *new Application;
  return application;
}

void Application::performOnMainThread(std::function<void()> work) {
  impl_->postedWork.post(std::move(work));
}

void Application::runModalForWindow(std::shared_ptr<Window> window) {
  // What is left from before is served inside the run, and what the run leaves after it.
  impl_->postedWork.wake();
  impl_->modalRuns.run(std::move(window));
  impl_->postedWork.wake();
}

void Application::stopModal() {
  impl_->modalRuns.stop();
}

void Application::activateIgnoringOtherApps(bool flag) {
  [NSApp activateIgnoringOtherApps:flag];
}

bool Application::hasDisplay() const {
  return true;
}

void Application::terminate() {
  impl_->end(0);
}

// Not through -[NSApplication terminate:], which ends in exit(3) and runs static destructors below the
// threads that still run, and which a sheet may refuse.
void Application::Impl::end(int status) {
  // A second request that comes up inside applicationWillTerminate ends the process there.
  if (auto* last = std::exchange(delegate, nullptr)) last->applicationWillTerminate();
  std::fflush(stdout);
  ::_exit(status);
}

}  // namespace platform

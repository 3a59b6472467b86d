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
  // Wake before the run so that work already queued runs inside it, and after it for the work that it leaves.
  impl_->postedWork.wake();
  impl_->modalRuns.run(std::move(window));
  impl_->postedWork.wake();
}

void Application::stopModal() {
  impl_->modalRuns.stop();
}

// From macOS 14 on, -activate replaces the other method, whose flag then has no effect. Chosen by the
// selector, because gobjc++ does not know @available.
void Application::activateIgnoringOtherApps(bool flag) {
  if (![NSApp respondsToSelector:@selector(activate)]) return [NSApp activateIgnoringOtherApps:flag];
  [NSApp performSelector:@selector(activate) withObject:nil];
}

bool Application::hasDisplay() const {
  return true;
}

void Application::terminate() {
  impl_->end(0);
}

// Not through -[NSApplication terminate:]: a sheet can refuse it, and it calls exit(3), which runs static
// destructors while other threads still run.
void Application::Impl::end(int status) {
  // terminate() called again from applicationWillTerminate finds no delegate and ends the process at once.
  if (auto* last = std::exchange(delegate, nullptr)) last->applicationWillTerminate();
  std::fflush(stdout);
  ::_exit(status);
}

}  // namespace platform

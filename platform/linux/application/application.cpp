#include "platform/application.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include <QCoreApplication>

#include "platform/helper_folder.h"
#include "platform/linux/application/application_impl.h"
#include "platform/linux/desktop/input_focus.h"
#include "platform/linux/windows/window_impl.h"

// Instrumented builds write their reports in Impl::end, because _exit runs no exit handlers. The compiler
// runtimes define these names. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
void __gcov_dump() __attribute__((weak));
void __lsan_do_leak_check() __attribute__((weak));
}
// NOLINTEND(bugprone-reserved-identifier)

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

void Application::activateIgnoringOtherApps(bool flag) {
  if (!flag && inputFocusOwner() == InputFocusOwner::OtherProgram) return;
  bringWindowsForward();
  impl_->modalRuns.raiseInnermost();
}

bool Application::hasDisplay() const {
  return impl_->hasDisplay;
}

void Application::terminate() {
  impl_->end(0);
}

void Application::Impl::end(int status) {
  // terminate() called again from applicationWillTerminate finds no delegate and ends the process at once.
  if (auto* last = std::exchange(delegate, nullptr)) last->applicationWillTerminate();
  removeHelpers();
  std::fflush(stdout);
  if (__gcov_dump != nullptr) __gcov_dump();
  if (__lsan_do_leak_check != nullptr) __lsan_do_leak_check();
  ::_exit(status);
}

}  // namespace platform

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

namespace platform {

class Window;

// Callbacks of the run loop. All are called on the main thread.
class ApplicationDelegate {
 public:
  virtual ~ApplicationDelegate() = default;
  // Called first, right after the delegate was created.
  virtual void awakeFromNib() = 0;
  // Called once, as the first event of the run loop.
  virtual void applicationDidFinishLaunching() = 0;
  // Called when the program was started a second time. The second process has already ended.
  virtual void applicationShouldHandleReopen() = 0;
  // Called once before the process ends, except when it is killed.
  virtual void applicationWillTerminate() = 0;
};

// What ApplicationMain needs from the program.
struct ApplicationRegistration {
  std::unique_ptr<ApplicationDelegate> (*makeDelegate)();
  // Examines the command line (without the program's name) before anything else happens. Returns the exit
  // status if the process is to end, else nullopt.
  std::optional<int> (*handleArguments)(std::span<const std::string_view> arguments);
};

// Defined by the program. This is the only function of the program that platform code calls.
[[nodiscard]] const ApplicationRegistration& applicationRegistration();

// Runs the program: examines the arguments, checks for a running instance, creates the delegate and runs the
// run loop. Call it first in main.
//
// Returns the status that handleArguments returned, or 0 if an instance is already running; that instance is
// activated. If there is no display to run on, prints an error on standard error and ends the process with
// status 1. Otherwise the process ends in Application::terminate.
int ApplicationMain(int argc, char** argv);

// The running program. Main thread only, unless noted otherwise.
class Application {
 public:
  [[nodiscard]] static Application& sharedApplication();

  // Queues `work` for the run loop of the main thread, in the order of the calls. Returns at once.
  // Thread-safe.
  void performOnMainThread(std::function<void()> work);

  // Runs a nested run loop until stopModal ends it. While the window is visible, the program's other windows
  // receive no input. Posted work, timers and the status menu keep working. Modal runs may be nested. If the
  // window is hidden, the run continues, and other windows receive input.
  void runModalForWindow(std::shared_ptr<Window> window);
  // Stops the innermost modal run. runModalForWindow returns once control is back in that run. Does nothing
  // if there is no modal run.
  void stopModal();

  // Shows the program's windows that were hidden because it was inactive, raises all its windows and requests
  // the input focus for them. With `flag` false, does not take the focus from another program.
  void activateIgnoringOtherApps(bool flag = true);

  // Calls the delegate's applicationWillTerminate, then ends the process with status 0. May be called from
  // any depth of nested run loops. Does not wait for other threads and runs no static destructors.
  [[noreturn]] void terminate();

  // Returns whether windows, menus and status items may still be used; false once the connection to the
  // display is lost.
  [[nodiscard]] bool hasDisplay() const;

  struct Impl;  // for implementations in platform/ only
  [[nodiscard]] Impl& impl() const { return *impl_; }

 private:
  Application();
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform

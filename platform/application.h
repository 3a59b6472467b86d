#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

namespace platform {

class Window;

// What the run loop asks of the program, always on the main thread.
class ApplicationDelegate {
 public:
  virtual ~ApplicationDelegate() = default;
  // The delegate has been made; nothing else has happened yet.
  virtual void awakeFromNib() = 0;
  // The run loop is up. Called once, as its first event.
  virtual void applicationDidFinishLaunching() = 0;
  // The program was started a second time; that second process has already left.
  virtual void applicationShouldHandleReopen() = 0;
  // The process is about to end, for whatever cause. Called once.
  virtual void applicationWillTerminate() = 0;
};

// What ApplicationMain needs to know of the program it runs.
struct ApplicationRegistration {
  std::unique_ptr<ApplicationDelegate> (*makeDelegate)();
  // Judges the command line (without the program's name) before anything else: the status to end with, or
  // nothing to go on.
  std::optional<int> (*handleArguments)(std::span<const std::string_view> arguments);
};

// The program defines this, and platform code asks nothing else of it.
[[nodiscard]] const ApplicationRegistration& applicationRegistration();

// Runs the program: arguments, single instance, delegate, run loop. Returns only what handleArguments
// decided, 0 for a second start, which brings the running instance forward, and 1 when there is nothing to
// run on (then said on standard error). Otherwise the process ends in Application::terminate. Call it first
// thing in main.
int ApplicationMain(int argc, char** argv);

// The running program. Main thread only, unless said otherwise.
class Application {
 public:
  [[nodiscard]] static Application& sharedApplication();

  // Has the run loop call `work` on the main thread, after what was posted before. Any thread; returns at
  // once.
  void performOnMainThread(std::function<void()> work);

  // Serves events until this run is stopped: a run loop inside the caller. Its window, which should be on
  // screen, takes the input that goes to the program's windows; posted work, timers and the status menu go
  // on. Runs nest. Hiding the window ends no run, and a run whose window is hidden keeps input from none.
  void runModalForWindow(std::shared_ptr<Window> window);
  // Stops the innermost run, which returns to its caller once control is back in it. Nothing when there is
  // none.
  void stopModal();

  // Brings the program's windows back that are hidden while it is inactive, all its windows to the front, and
  // asks for the keyboard for them; unless `flag` says otherwise, also while another program has it.
  void activateIgnoringOtherApps(bool flag = true);

  // Lets the delegate do its applicationWillTerminate, then ends the process with status 0 from however deep
  // in the run loop. Threads that still run are not waited for, and no static destructor runs below them.
  [[noreturn]] void terminate();

  // Whether windows, menus and status items can still be touched; false once the display is lost.
  [[nodiscard]] bool hasDisplay() const;

  struct Impl;  // for the bodies of platform/ alone
  [[nodiscard]] Impl& impl() const { return *impl_; }

 private:
  Application();
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <thread>

#include <QApplication>
#include <QTimer>
#include <QWidget>

#include "platform/application.h"
#include "platform/window.h"
#include "tests/harness/desktop/event_loop.h"
#include "tests/harness/desktop/x_windows.h"

namespace {

using platform::Application;
using platform::Window;
using test_support::windowNamed;

constexpr const char* plain = "Plain";
constexpr const char* outer = "Outer";
constexpr const char* inner = "Inner";

std::string display() {
  return qEnvironmentVariable("DISPLAY").toStdString();
}

// Queries the display. Thread-safe.
bool isShown(const std::string& title) {
  return test_support::waitForWindow(display(), windowNamed(title), std::chrono::milliseconds(0)).has_value();
}
void requestClose(const std::string& title) {
  const auto window = test_support::waitForWindow(display(), windowNamed(title));
  ASSERT_TRUE(window) << title << " is not on the display";
  test_support::requestClose(display(), window->id);
}
bool closes(const std::string& title) {
  return test_support::waitForNoWindow(display(), windowNamed(title));
}
test_support::WindowPredicate aboveOthers(const std::string& title, bool above) {
  return [=](const test_support::XWindow& window) {
    return window.name == title && above == (std::ranges::count(window.states, "_NET_WM_STATE_ABOVE") > 0);
  };
}

// Windows with a close button, closed through the window manager like by a user's click.
class ModalWindow : public testing::Test {
 protected:
  static std::shared_ptr<Window> open(const char* title) {
    auto window = Window::make({0, 0, 200, 80}, platform::WindowStyle::TitledClosable);
    window->setTitle(title);
    window->makeKeyAndOrderFront();
    EXPECT_TRUE(serveEventsUntil([&] { return isShown(title); }));
    return window;
  }

  // Runs the window modally while `user` runs on a thread of its own, then stops the modal run.
  static void runModally(const std::shared_ptr<Window>& window, const std::function<void()>& user) {
    const std::jthread hands([&user] {
      user();
      Application::sharedApplication().performOnMainThread([] { stopModal(); });
    });
    Application::sharedApplication().runModalForWindow(window);
  }

  // Starts a modal run inside the current one and waits for it. Call from the thread of `user`.
  static void nestRun(const std::shared_ptr<Window>& window) {
    std::promise<void> begun;
    Application& application = Application::sharedApplication();
    application.performOnMainThread([&application, window] { application.runModalForWindow(window); });
    application.performOnMainThread([&begun] { begun.set_value(); });
    begun.get_future().wait();
  }

  static void stopModal() { Application::sharedApplication().stopModal(); }
};

// Stops a modal run that exceeds the timeout.
class Rescue {
 public:
  Rescue() {
    timer_.setSingleShot(true);
    QObject::connect(&timer_, &QTimer::timeout, [this] {
      wasNeeded_ = true;
      Application::sharedApplication().stopModal();
    });
    timer_.start(test_support::kPatience);
  }
  [[nodiscard]] bool wasNeeded() const { return wasNeeded_; }

 private:
  QTimer timer_;
  bool wasNeeded_ = false;
};

// The window manager delivers the requests in order: once a later one is granted, the earlier one was
// refused.
TEST_F(ModalWindow, RefusesCloseRequestsOfOtherWindowsOnly) {
  const auto other = open(plain), modal = open(inner);
  runModally(modal, [] {
    requestClose(plain);
    requestClose(inner);
    EXPECT_TRUE(closes(inner));
    EXPECT_TRUE(isShown(plain));
  });
  EXPECT_TRUE(other->isVisible());
  other->orderOut();
}

// Blocking must begin before the window is mapped, even if it is ordered to the front repeatedly.
TEST_F(ModalWindow, BlocksOthersAsSoonAsShown) {
  const auto other = open(plain);
  const auto modal = Window::make({0, 0, 200, 80}, platform::WindowStyle::TitledClosable);
  int closings = 0;
  const auto closeOther = [&closings] {
    for (QWidget* widget : QApplication::topLevelWidgets())
      if (widget->windowTitle() == plain && widget->close()) ++closings;
  };
  Application::sharedApplication().performOnMainThread([&] {
    closeOther();
    modal->makeKeyAndOrderFront();
    closeOther();
    stopModal();
  });
  modal->makeKeyAndOrderFront();
  Application::sharedApplication().runModalForWindow(modal);
  EXPECT_EQ(closings, 0);
  EXPECT_TRUE(other->isVisible());
  modal->orderOut();
  other->orderOut();
}

TEST_F(ModalWindow, OnlyInnermostOfNestedRunsCanBeClosed) {
  const auto other = open(plain), first = open(outer), second = open(inner);
  runModally(first, [&second] {
    nestRun(second);
    requestClose(plain);
    requestClose(outer);
    requestClose(inner);
    EXPECT_TRUE(closes(inner));
    EXPECT_TRUE(isShown(plain) && isShown(outer));
    Application::sharedApplication().performOnMainThread([] { stopModal(); });
  });
  other->orderOut();
  first->orderOut();
}

TEST_F(ModalWindow, ClosedWindowDoesNotBlockOthersDuringRun) {
  const auto other = open(plain), modal = open(inner);
  bool ranOn = false;
  runModally(modal, [&ranOn] {
    requestClose(inner);
    EXPECT_TRUE(closes(inner));
    requestClose(plain);
    EXPECT_TRUE(closes(plain));
    ranOn = true;
  });
  EXPECT_TRUE(ranOn);
}

TEST_F(ModalWindow, BlockedWindowClosesAfterRun) {
  const auto other = open(plain), modal = open(inner);
  runModally(modal, [] {
    requestClose(plain);
    requestClose(inner);
    EXPECT_TRUE(closes(inner));
  });
  ASSERT_TRUE(other->isVisible());
  requestClose(plain);
  EXPECT_TRUE(serveEventsUntil([&] { return !other->isVisible(); }));
}

TEST_F(ModalWindow, StaysAboveOtherProgramsDuringRunOnly) {
  const auto modal = open(inner);
  runModally(modal, [] { EXPECT_TRUE(test_support::waitForWindow(display(), aboveOthers(inner, true))); });
  EXPECT_TRUE(modal->isVisible());
  EXPECT_TRUE(test_support::waitForWindow(display(), aboveOthers(inner, false)));
  modal->orderOut();
}

TEST_F(ModalWindow, OuterWindowStaysAboveOtherProgramsAfterInnerRun) {
  const auto first = open(outer), second = open(inner);
  runModally(first, [&second] {
    nestRun(second);
    EXPECT_TRUE(test_support::waitForWindow(display(), aboveOthers(inner, true)));
    Application::sharedApplication().performOnMainThread([] { stopModal(); });
    EXPECT_TRUE(test_support::waitForWindow(display(), aboveOthers(inner, false)));
    EXPECT_TRUE(test_support::waitForWindow(display(), aboveOthers(outer, true)));
  });
  EXPECT_TRUE(test_support::waitForWindow(display(), aboveOthers(outer, false)));
  first->orderOut();
  second->orderOut();
}

TEST_F(ModalWindow, TwoStopsInOneEventEndTwoNestedRuns) {
  const auto first = open(outer), second = open(inner);
  Application& application = Application::sharedApplication();
  bool innerReturned = false;
  application.performOnMainThread([&] {
    application.performOnMainThread([] {
      stopModal();
      stopModal();
    });
    application.runModalForWindow(second);
    innerReturned = true;
  });
  const Rescue rescue;
  application.runModalForWindow(first);
  EXPECT_TRUE(innerReturned);
  EXPECT_FALSE(rescue.wasNeeded());
  first->orderOut();
  second->orderOut();
}

// The first run leaves two calls pending; the second of them is handled inside the run that the first starts.
TEST_F(ModalWindow, PendingCallsOfStoppedRunAreHandledAfterItAndInNextRun) {
  const auto first = open(outer), second = open(inner);
  Application& application = Application::sharedApplication();
  bool secondReturned = false, servedInside = false;
  const Rescue rescue;
  application.performOnMainThread([] { stopModal(); });
  application.performOnMainThread([&] {
    application.runModalForWindow(second);
    secondReturned = true;
  });
  application.performOnMainThread([&] {
    servedInside = !secondReturned;
    stopModal();
  });
  application.runModalForWindow(first);
  EXPECT_FALSE(secondReturned);
  EXPECT_TRUE(serveEventsUntil([&] { return secondReturned; }));
  EXPECT_TRUE(servedInside);
  first->orderOut();
  second->orderOut();
}

TEST_F(ModalWindow, ClosedWindowWithoutOwnerIsDestroyed) {
  const std::weak_ptr<Window> window = open(plain);
  ASSERT_FALSE(window.expired());
  requestClose(plain);
  EXPECT_TRUE(serveEventsUntil([&] { return window.expired(); }));
}

TEST_F(ModalWindow, ClosedWindowIsNotShownAgain) {
  const auto window = open(plain);
  requestClose(plain);
  ASSERT_TRUE(serveEventsUntil([&] { return window.use_count() == 1; }));
  window->makeKeyAndOrderFront();
  EXPECT_FALSE(window->isVisible());
}

}  // namespace

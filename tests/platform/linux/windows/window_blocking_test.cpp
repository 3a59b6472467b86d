#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include <QCoreApplication>

#include "platform/application.h"
#include "platform/image_view.h"
#include "tests/harness/desktop/x_connection.h"
#include "tests/harness/desktop/x_windows.h"
#include "tests/harness/processes/child_process.h"
#include "tests/platform/linux/windows/support_layout.h"
#include "tests/platform/linux/windows/window_fixture.h"

namespace {

using platform::Application;
using platform::Window;

class Link : public platform::ImageView {
 public:
  using ImageView::ImageView;
  void mouseUp(const platform::MouseEvent&) override { ++presses; }
  int presses = 0;
};

// A window with two links, the first focused, and a modal window that blocks it.
class WindowBlocking : public WindowFixture {
 protected:
  void SetUp() override {
    blocked_->setTitle("Blocked");
    for (const auto& link : {first_, second_}) {
      link->setActsAsLink(true);
      blocked_->contentView().addSubview(link);
    }
    modal_->setTitle("Modal");
    ASSERT_TRUE(show(*blocked_));
    widgetOf(*first_).setFocus();
  }
  void TearDown() override {
    modal_->close();
    blocked_->close();
  }

  // Activates the blocked window through the window manager, which permits it.
  [[nodiscard]] bool turnToBlockedWindow() {
    const auto window = test_support::waitForWindow(display(), test_support::windowNamed("Blocked"));
    test_support::ChildProcess tool;
    return window &&
           tool.start({"xdotool", "windowactivate", std::to_string(window->id)},
                      {.environment = {{"DISPLAY", display()}}}) &&
           serveEventsUntil([this] { return widgetOf(*blocked_).isActiveWindow(); });
  }

  // Waits until the window manager has handled all earlier requests: it answers a _NET_REQUEST_FRAME_EXTENTS
  // message for an unmapped window.
  static void serveWindowManager() {
    QCoreApplication::processEvents();
    const test_support::XConnection x(display());
    const xcb_window_t window = xcb_generate_id(x.get());
    xcb_create_window(x.get(), XCB_COPY_FROM_PARENT, window, x.root(), 0, 0, 10, 10, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_client_message_event_t question{};
    question.response_type = XCB_CLIENT_MESSAGE;
    question.format = 32;
    question.window = window;
    question.type = x.atom("_NET_REQUEST_FRAME_EXTENTS");
    xcb_send_event(x.get(), 0, x.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&question));
    x.synchronize();
    EXPECT_TRUE(serveEventsUntil([&] { return x.property(window, "_NET_FRAME_EXTENTS").has_value(); }));
  }

  // Runs `user` inside a modal run.
  void duringModalRun(const std::function<void()>& user) {
    ASSERT_TRUE(show(*modal_));
    Application::sharedApplication().performOnMainThread([&] {
      user();
      Application::sharedApplication().stopModal();
    });
    Application::sharedApplication().runModalForWindow(modal_);
  }

  std::shared_ptr<Window> blocked_ = Window::make({0, 0, 200, 80}, platform::WindowStyle::TitledClosable);
  std::shared_ptr<Window> modal_ = Window::make({0, 0, 100, 40}, platform::WindowStyle::TitledClosable);
  std::shared_ptr<Link> first_ = std::make_shared<Link>(platform::Rect{0, 0, 100, 80});
  std::shared_ptr<Link> second_ = std::make_shared<Link>(platform::Rect{100, 0, 100, 80});
};

TEST_F(WindowBlocking, BlockedWindowIgnoresKeys) {
  duringModalRun([this] {
    ASSERT_TRUE(turnToBlockedWindow());
    press("Return");
    press("Tab");
    press("Escape");
    EXPECT_TRUE(settle(*blocked_));
    EXPECT_EQ(first_->presses, 0);
    EXPECT_TRUE(widgetOf(*first_).hasFocus());
    EXPECT_TRUE(blocked_->isVisible());
  });
  ASSERT_TRUE(turnToBlockedWindow());
  press("Return");
  EXPECT_TRUE(serveEventsUntil([this] { return first_->presses == 1; }));
}

TEST_F(WindowBlocking, ActivationKeepsFocusOnModalWindow) {
  std::vector<std::shared_ptr<Window>> others;
  for (int i = 0; i < 8; ++i) {
    others.push_back(Window::make({0, 0, 100, 40}, platform::WindowStyle::TitledClosable));
    ASSERT_TRUE(show(*others.back()));
  }
  duringModalRun([this] {
    ASSERT_TRUE(turnToBlockedWindow());
    Application::sharedApplication().activateIgnoringOtherApps(true);
    serveWindowManager();
    EXPECT_TRUE(serveEventsUntil([this] { return widgetOf(*modal_).isActiveWindow(); }));
  });
  for (const auto& other : others) other->close();
}

TEST_F(WindowBlocking, BlockedWindowIgnoresClicksAndModalWindowIsRaised) {
  duringModalRun([this] {
    ASSERT_TRUE(turnToBlockedWindow());
    click(widgetOf(*second_), QPoint(90, 70));
    EXPECT_TRUE(serveEventsUntil([this] { return widgetOf(*modal_).isActiveWindow(); }));
    EXPECT_EQ(second_->presses, 0);
  });
  ASSERT_TRUE(turnToBlockedWindow());
  click(widgetOf(*second_), QPoint(90, 70));
  EXPECT_TRUE(serveEventsUntil([this] { return second_->presses == 1; }));
}

}  // namespace

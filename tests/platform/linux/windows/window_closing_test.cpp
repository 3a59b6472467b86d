#include <gtest/gtest.h>

#include <QApplication>

#include "platform/alert.h"
#include "platform/application.h"
#include "tests/harness/desktop/x_windows.h"
#include "tests/platform/linux/windows/support_layout.h"
#include "tests/platform/linux/windows/window_fixture.h"

namespace {

using platform::Window;

class WindowClosing : public WindowFixture {
 protected:
  [[nodiscard]] bool openWindow() {
    layout_->window->setWillClose([this] {
      ++closings_;
      wasVisible_ = layout_->window->isVisible();
    });
    return show(*layout_->window);
  }

  void requestClose() {
    const auto window = test_support::waitForWindow(display(), test_support::windowNamed("Support Tovalin"));
    ASSERT_TRUE(window);
    test_support::requestClose(display(), window->id);
  }

  [[nodiscard]] bool closes() {
    return serveEventsUntil([this] { return !layout_->window->isVisible(); });
  }

  std::unique_ptr<SupportLayout> layout_ = std::make_unique<SupportLayout>();
  int closings_ = 0;
  bool wasVisible_ = false;
};

TEST_F(WindowClosing, CloseButtonCallsWillCloseOnceBeforehand) {
  ASSERT_TRUE(openWindow());
  requestClose();
  ASSERT_TRUE(closes());
  layout_->window->close();
  EXPECT_EQ(closings_, 1);
  EXPECT_TRUE(wasVisible_);
}

TEST_F(WindowClosing, EscapeClosesWindow) {
  ASSERT_TRUE(openWindow());
  widgetOf(*layout_->faq).setFocus();
  press("Escape");
  ASSERT_TRUE(closes());
  EXPECT_EQ(closings_, 1);
}

TEST_F(WindowClosing, CloseCallsWillClose) {
  ASSERT_TRUE(openWindow());
  layout_->window->close();
  EXPECT_FALSE(layout_->window->isVisible());
  EXPECT_EQ(closings_, 1);
}

TEST_F(WindowClosing, ClosedWindowIsNotShownByOrderFrontOrActivation) {
  ASSERT_TRUE(openWindow());
  requestClose();
  ASSERT_TRUE(closes());
  layout_->window->makeKeyAndOrderFront();
  platform::Application::sharedApplication().activateIgnoringOtherApps();
  EXPECT_FALSE(layout_->window->isVisible());
}

TEST_F(WindowClosing, OrderOutDoesNotCallWillCloseAndIsReversible) {
  ASSERT_TRUE(openWindow());
  layout_->window->orderOut();
  EXPECT_EQ(closings_, 0);
  EXPECT_TRUE(serveEventsUntil([] { return QGuiApplication::focusWindow() == nullptr; }));
  EXPECT_TRUE(show(*layout_->window));
  layout_->window->close();
}

TEST_F(WindowClosing, WillCloseMayStopModalRunAndReleaseWindow) {
  ASSERT_TRUE(openWindow());
  std::weak_ptr<Window> window = layout_->window;
  layout_->window->setWillClose([this] {
    platform::Application::sharedApplication().stopModal();
    layout_.reset();
  });
  platform::Application::sharedApplication().performOnMainThread([] { press("Escape"); });
  platform::Application::sharedApplication().runModalForWindow(layout_->window);
  EXPECT_TRUE(serveEventsUntil([&] { return window.expired(); }));
}

TEST_F(WindowClosing, TitledWindowIgnoresEscapeAndCloseRequest) {
  auto titled = Window::make({0, 0, 200, 80}, platform::WindowStyle::Titled);
  titled->setTitle("Titled");
  ASSERT_TRUE(show(*titled));
  press("Escape");
  const auto onDisplay = test_support::waitForWindow(display(), test_support::windowNamed("Titled"));
  ASSERT_TRUE(onDisplay);
  test_support::deliverCloseRequest(display(), onDisplay->id);
  ASSERT_TRUE(settle(*titled));
  EXPECT_TRUE(titled->isVisible());
  titled->orderOut();
}

TEST_F(WindowClosing, TwoHundredWindowsWithSheetsLeakNoWidget) {
  const auto openAndClose = [](bool online) {
    SupportLayout layout(online);
    layout.window->setHidesOnDeactivate(true);
    layout.window->makeKeyAndOrderFront();
    platform::Alert alert;
    alert.addButton("Close");
    alert.beginSheetModalForWindow(layout.window, nullptr);
    layout.window->close();
    return std::weak_ptr<Window>(layout.window);
  };
  const auto before = QApplication::allWidgets().size();
  for (int i = 0; i < 200; ++i) ASSERT_TRUE(openAndClose(i % 2 == 0).expired());
  EXPECT_EQ(QApplication::allWidgets().size(), before);
}

}  // namespace

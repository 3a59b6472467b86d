#include "notices/clickable_image_view.h"

#include <gtest/gtest.h>

#include <optional>

#include <QAccessible>
#include <QGuiApplication>
#include <QWidget>

#include "app/globals.h"
#include "platform/image.h"
#include "platform/linux/windows/view_impl.h"
#include "platform/window.h"
#include "tests/harness/desktop/event_loop.h"
#include "tests/harness/processes/child_process.h"

namespace {

class Listener final : public tovalinNSImageViewDelegate {
 public:
  void myImageView(tovalinNSImageView& clicked, const platform::MouseEvent& mouseUp) override {
    ++clicks;
    view = &clicked;
    event = mouseUp;
  }
  int clicks = 0;
  tovalinNSImageView* view = nullptr;
  platform::MouseEvent event;
};

class DeafListener final : public tovalinNSImageViewDelegate {};

// A window on the display with the view at (100, 50). xdotool moves the pointer.
class ClickableImageView : public testing::Test {
 protected:
  void SetUp() override {
    isNetworkOnline = true;
    window_->contentView().addSubview(view_);
    window_->makeKeyAndOrderFront();
    QWidget& widget = *window_->contentView().impl().widget;
    // The window manager moves the window until it has its frame.
    ASSERT_TRUE(serveEventsUntil(
        [&] { return widget.isActiveWindow() && widget.geometry().top() > widget.frameGeometry().top(); }));
    origin_ = widget.mapToGlobal(QPoint(0, 0)) * widget.devicePixelRatioF();
    scale_ = widget.devicePixelRatioF();
  }

  // Moves the pointer to a position of the window in points from its lower left corner.
  void pointAt(double x, double y) {
    const int pixelX = origin_.x() + static_cast<int>(x * scale_);
    const int pixelY = origin_.y() + static_cast<int>((200 - y) * scale_);
    xdotool({"mousemove", std::to_string(pixelX), std::to_string(pixelY)});
  }

  static void xdotool(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "xdotool");
    test_support::ChildProcess tool;
    ASSERT_TRUE(tool.start(arguments));
    ASSERT_EQ(tool.wait(), test_support::ExitStatus{.code = 0});
  }

  [[nodiscard]] Qt::CursorShape cursor() const { return view_->impl().widget->cursor().shape(); }

  void TearDown() override { window_->orderOut(); }

  std::shared_ptr<platform::Window> window_ =
      platform::Window::make({0, 0, 300, 200}, platform::WindowStyle::Titled);
  std::shared_ptr<tovalinNSImageView> view_ =
      std::make_shared<tovalinNSImageView>(platform::Rect{100, 50, 80, 40});
  QPoint origin_;
  double scale_ = 1;
};

TEST_F(ClickableImageView, ClickCallsDelegateWithViewAndLocation) {
  Listener listener;
  view_->delegate = &listener;
  pointAt(110, 60);
  xdotool({"click", "1"});
  ASSERT_TRUE(serveEventsUntil([&] { return listener.clicks == 1; }));
  EXPECT_EQ(listener.view, view_.get());
  EXPECT_NEAR(listener.event.locationInView.x, 10, 1.5);
  EXPECT_NEAR(listener.event.locationInView.y, 10, 1.5);
}

TEST_F(ClickableImageView, ClickWithoutDelegateMethodOrDelegateIsNoOp) {
  DeafListener deaf;
  view_->delegate = &deaf;
  pointAt(110, 60);
  xdotool({"click", "1"});
  view_->delegate = nullptr;
  xdotool({"click", "1"});

  Listener listener;
  ASSERT_FALSE(serveEventsUntil([&] { return listener.clicks > 0; }, std::chrono::milliseconds(100)));
  view_->delegate = &listener;
  xdotool({"click", "1"});
  ASSERT_TRUE(serveEventsUntil([&] { return listener.clicks > 0; }));
  EXPECT_EQ(listener.clicks, 1);
}

TEST_F(ClickableImageView, ReleaseOutsideOrOfOtherButtonIsNoClick) {
  Listener listener;
  view_->delegate = &listener;
  pointAt(110, 60);
  xdotool({"click", "3"});
  xdotool({"mousedown", "1"});
  ASSERT_TRUE(serveEventsUntil([] { return QGuiApplication::mouseButtons() == Qt::LeftButton; }));
  pointAt(20, 20);
  xdotool({"mouseup", "1"});
  ASSERT_TRUE(serveEventsUntil([] { return QGuiApplication::mouseButtons() == Qt::NoButton; }));
  pointAt(110, 60);
  xdotool({"click", "1"});
  ASSERT_TRUE(serveEventsUntil([&] { return listener.clicks > 0; }));
  EXPECT_EQ(listener.clicks, 1);
}

TEST_F(ClickableImageView, ShowsPointingHandWhileOnline) {
  pointAt(20, 20);
  for (const auto& [x, y] : {std::pair(101.5, 51.5), std::pair(178.0, 88.0)}) {
    pointAt(x, y);
    EXPECT_TRUE(serveEventsUntil([&] { return cursor() == Qt::PointingHandCursor; })) << x << ", " << y;
    pointAt(20, 20);
    EXPECT_TRUE(serveEventsUntil([&] { return !view_->impl().widget->underMouse(); }));
  }
}

TEST_F(ClickableImageView, ShowsArrowWhileOffline) {
  pointAt(20, 20);
  ASSERT_TRUE(serveEventsUntil([&] { return !view_->impl().widget->underMouse(); }));
  isNetworkOnline = false;
  pointAt(140, 70);
  ASSERT_TRUE(serveEventsUntil([&] { return view_->impl().widget->underMouse(); }));
  EXPECT_EQ(cursor(), Qt::ArrowCursor);

  pointAt(20, 20);
  ASSERT_TRUE(serveEventsUntil([&] { return !view_->impl().widget->underMouse(); }));
  isNetworkOnline = true;
  pointAt(140, 70);
  EXPECT_TRUE(serveEventsUntil([&] { return cursor() == Qt::PointingHandCursor; }));
}

TEST_F(ClickableImageView, WindowKeepsViewAlive) {
  std::weak_ptr<tovalinNSImageView> watched = view_;
  view_.reset();
  EXPECT_FALSE(watched.expired());
}

TEST_F(ClickableImageView, IgnoresKeyboardByDefault) {
  Listener listener;
  view_->delegate = &listener;
  xdotool({"key", "Tab", "Return", "space"});
  pointAt(110, 60);
  xdotool({"click", "1"});
  ASSERT_TRUE(serveEventsUntil([&] { return listener.clicks >= 1; }));
  EXPECT_EQ(listener.event.locationInView.x, 10);
  EXPECT_EQ(listener.clicks, 1);
}

TEST_F(ClickableImageView, ActingAsLinkIsPressedByReturnAndSpace) {
  Listener listener;
  view_->delegate = &listener;
  view_->setActsAsLink(true);
  xdotool({"key", "Tab", "Return", "space", "Tab"});
  ASSERT_TRUE(serveEventsUntil([&] { return listener.clicks >= 2; }));
  EXPECT_EQ(listener.clicks, 2);
  EXPECT_EQ(listener.view, view_.get());
  EXPECT_EQ(listener.event.locationInView.x, 40);
  EXPECT_EQ(listener.event.locationInView.y, 20);
}

TEST_F(ClickableImageView, ActingAsLinkIsExposedToAccessibility) {
  Listener listener;
  const auto link = std::make_shared<tovalinNSImageView>(platform::Rect{0, 0, 80, 40});
  link->delegate = &listener;
  link->setAccessibilityLabel("Banner");
  link->setActsAsLink(true);
  auto* interface = QAccessible::queryAccessibleInterface(link->impl().widget.get());
  ASSERT_NE(interface, nullptr);
  EXPECT_EQ(interface->role(), QAccessible::Link);
  EXPECT_EQ(interface->text(QAccessible::Name).toStdString(), "Banner");
  interface->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(listener.clicks, 1);
}

}  // namespace

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <QImage>
#include <QPixmap>

#include "platform/application.h"
#include "platform/linux/windows/first_picture.h"
#include "tests/harness/desktop/x_connection.h"
#include "tests/harness/desktop/x_picture.h"
#include "tests/harness/desktop/x_windows.h"
#include "tests/platform/linux/windows/support_layout.h"
#include "tests/platform/linux/windows/window_fixture.h"

namespace {

// Tests what a window shows while the program is busy. Only serveEventsUntil() handles events here.
class WindowPainting : public WindowFixture {
 protected:
  void TearDown() override { layout_.window->close(); }

  [[nodiscard]] static std::optional<test_support::XWindow> onDisplay() {
    return test_support::waitForWindow(display(), test_support::windowNamed("Support Tovalin"));
  }
  // Returns whether the display shows the widget as it would paint itself.
  [[nodiscard]] bool isPainted() {
    const auto window = onDisplay();
    if (!window) return false;
    const QImage expected = widgetOf(*layout_.window).grab().toImage();
    const auto shown =
        test_support::pictureOf(display(), {window->x, window->y, window->width, window->height});
    if (!shown || expected.width() != shown->width() || expected.height() != shown->height()) return false;
    for (int y = 0; y < shown->height(); ++y) {
      for (int x = 0; x < shown->width(); ++x) {
        const test_support::Colour colour = shown->at(x, y);
        if (expected.pixelColor(x, y) != QColor(colour.red, colour.green, colour.blue)) return false;
      }
    }
    return true;
  }

  // Clears the window on the server: a background pixmap or pixel would overwrite its content.
  void expectNoBackground() {
    const auto window = onDisplay();
    ASSERT_TRUE(window);
    const test_support::XConnection x(display());
    xcb_clear_area(x.get(), 0, window->id, 0, 0, 0, 0);
    x.synchronize();
    EXPECT_TRUE(isPainted());
  }

  SupportLayout layout_;
};

TEST_F(WindowPainting, NewWindowIsPaintedWithoutRunLoop) {
  layout_.window->makeKeyAndOrderFront();
  EXPECT_TRUE(test_support::waitUntil([&] { return isPainted(); }));
}

TEST_F(WindowPainting, WindowOrderedFrontAgainIsPaintedWithCurrentContent) {
  ASSERT_TRUE(show(*layout_.window));
  layout_.window->orderOut();
  ASSERT_TRUE(test_support::waitForNoWindow(display(), test_support::windowNamed("Support Tovalin")));
  layout_.window->setBackgroundColor(platform::colorFromHsb(0.5, 0.5, 0.5, 1.0));
  layout_.window->makeKeyAndOrderFront();
  EXPECT_TRUE(test_support::waitUntil([&] { return isPainted(); }));
}

// Qt creates a new native window after such a change.
TEST_F(WindowPainting, WindowShownAgainAfterModalRunIsPainted) {
  ASSERT_TRUE(show(*layout_.window));
  auto& application = platform::Application::sharedApplication();
  application.performOnMainThread([&application] { application.stopModal(); });
  application.runModalForWindow(layout_.window);
  layout_.window->orderOut();
  ASSERT_TRUE(test_support::waitForNoWindow(display(), test_support::windowNamed("Support Tovalin")));
  layout_.window->makeKeyAndOrderFront();
  EXPECT_TRUE(test_support::waitUntil([&] { return isPainted(); }));
}

TEST_F(WindowPainting, CoveredWindowOrderedFrontIsPaintedWithoutRunLoop) {
  ASSERT_TRUE(show(*layout_.window));
  ASSERT_TRUE(serveEventsUntil([&] { return isPainted(); }));
  SupportLayout cover;
  cover.window->setTitle("Cover");
  cover.window->setBackgroundColor(platform::colorFromHsb(0.5, 0.5, 0.5, 1.0));
  cover.window->center();
  layout_.window->center();
  ASSERT_TRUE(show(*cover.window));
  ASSERT_TRUE(serveEventsUntil([&] { return !isPainted(); }));
  layout_.window->makeKeyAndOrderFront();
  EXPECT_TRUE(test_support::waitUntil([&] { return isPainted(); }));
  cover.window->close();
}

TEST_F(WindowPainting, BackgroundOfFrontWindowIsRemoved) {
  ASSERT_TRUE(show(*layout_.window));
  layout_.window->makeKeyAndOrderFront();
  layout_.window->setBackgroundColor(platform::colorFromHsb(0.5, 0.5, 0.5, 1.0));
  ASSERT_TRUE(serveEventsUntil([&] { return isPainted(); }));
  expectNoBackground();
}

TEST_F(WindowPainting, BackgroundIsRemovedAfterPainting) {
  ASSERT_TRUE(show(*layout_.window));
  ASSERT_TRUE(serveEventsUntil([&] { return isPainted(); }));
  layout_.window->setBackgroundColor(platform::colorFromHsb(0.5, 0.5, 0.5, 1.0));
  ASSERT_TRUE(serveEventsUntil([&] { return isPainted(); }));
  expectNoBackground();
}

TEST(PictureFormat, MatchesPixelFormatOfDisplay) {
  using platform::pictureFormat;
  EXPECT_EQ(pictureFormat({16, 0xf800, 0x7e0, 0x1f}), QImage::Format_RGB16);
  EXPECT_EQ(pictureFormat({24, 0xff0000, 0xff00, 0xff}), QImage::Format_RGB32);
  EXPECT_EQ(pictureFormat({30, 0x3ff00000, 0xffc00, 0x3ff}), QImage::Format_RGB30);
  EXPECT_EQ(pictureFormat({30, 0x3ff, 0xffc00, 0x3ff00000}), QImage::Format_BGR30);
  EXPECT_EQ(pictureFormat({32, 0xff0000, 0xff00, 0xff}), QImage::Format_ARGB32_Premultiplied);
  EXPECT_EQ(pictureFormat({24, 0xff, 0xff00, 0xff0000}), std::nullopt) << "red and blue exchanged";
  EXPECT_EQ(pictureFormat({15, 0x7c00, 0x3e0, 0x1f}), std::nullopt);
  EXPECT_EQ(pictureFormat({8, 0, 0, 0}), std::nullopt) << "a palette";
}

}  // namespace

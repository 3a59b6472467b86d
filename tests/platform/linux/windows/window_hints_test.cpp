#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <vector>

#include <QGuiApplication>

#include "platform/application.h"
#include "tests/harness/desktop/x_connection.h"
#include "tests/harness/desktop/x_windows.h"
#include "tests/platform/linux/windows/support_layout.h"
#include "tests/platform/linux/windows/window_fixture.h"

namespace {

using Numbers = std::vector<std::uint32_t>;

// Tests _MOTIF_WM_HINTS, from which the window manager chooses the window's controls.
class WindowHints : public WindowFixture {
 protected:
  void TearDown() override { layout_.window->close(); }

  // Returns flags, functions, decorations, input mode and status.
  [[nodiscard]] static Numbers hintsOf(std::uint32_t window) {
    const test_support::XConnection x(display());
    const auto name = x.atom("_MOTIF_WM_HINTS");
    const auto cookie = xcb_get_property(x.get(), 0, window, name, name, 0, 5);
    const test_support::XcbReply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(x.get(), cookie, nullptr));
    if (!reply) return {};
    const auto* numbers = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {numbers, numbers + xcb_get_property_value_length(reply.get()) / 4};
  }
  [[nodiscard]] static Numbers hintsOnDisplay() {
    const auto window = test_support::waitForWindow(display(), test_support::windowNamed("Support Tovalin"));
    return window ? hintsOf(window->id) : Numbers();
  }
  void runModally() {
    auto& application = platform::Application::sharedApplication();
    application.performOnMainThread([this, &application] {
      EXPECT_EQ(hintsOnDisplay(), wanted_);
      application.stopModal();
    });
    application.runModalForWindow(layout_.window);
  }
  [[nodiscard]] bool hide() {
    layout_.window->orderOut();
    return serveEventsUntil([] { return QGuiApplication::focusWindow() == nullptr; }) &&
           test_support::waitForNoWindow(display(), test_support::windowNamed("Support Tovalin"));
  }

  const Numbers wanted_{3, 36, 26, 0, 0};
  SupportLayout layout_;
};

TEST_F(WindowHints, RequestsTitleMoveAndCloseOnlyAtEachShow) {
  for (int i = 0; i < 4; ++i) {
    ASSERT_TRUE(show(*layout_.window)) << "show " << i;
    EXPECT_EQ(hintsOnDisplay(), wanted_) << "show " << i;
    if (i < 2) runModally();
    EXPECT_EQ(hintsOnDisplay(), wanted_) << "after modal run " << i;
    ASSERT_TRUE(hide());
  }
}

}  // namespace

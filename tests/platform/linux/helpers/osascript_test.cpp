#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/platform/linux/helpers/helper_run.h"
#include "tests/platform/linux/helpers/window_scene.h"

namespace helper_test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr char kScript[] =
    "tell application \"System Events\" \n set frontApp to name of first application whose frontmost is true "
    "\n tell "
    "application frontApp \n activate \n end tell \n end tell";

Ended activateFrontOn(const std::optional<std::string>& display) {
  return run({helper("osascript"), "-e", kScript}, {.environment = {{"DISPLAY", display}}});
}

// Two windows; the second is on top and active.
class OsascriptTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(scene_.start());
    lower_ = scene_.open("NORMAL");
    upper_ = scene_.open("NORMAL");
    ASSERT_NE(0U, lower_);
    ASSERT_NE(0U, upper_);
    ASSERT_THAT(scene_.stacking(), ElementsAre(lower_, upper_));
    ASSERT_THAT(scene_.takeRequests(), ElementsAre());
  }

  [[nodiscard]] Ended activateFront() { return activateFrontOn(scene_.display().name()); }

  [[nodiscard]] bool isInFront(xcb_window_t window) {
    return scene_.becomesActive(window) && scene_.hasInputFocus(window);
  }

  WindowScene scene_;
  xcb_window_t lower_ = 0;
  xcb_window_t upper_ = 0;
};

ActivationRequest askedByUserFor(xcb_window_t window) {
  return {window, 2};
}

TEST_F(OsascriptTest, ActiveTopmostWindowStaysInFront) {
  const Ended ended = activateFront();
  EXPECT_EQ(0, ended.code);
  EXPECT_EQ("", ended.output + ended.error);
  EXPECT_THAT(scene_.takeRequests(), ElementsAre(askedByUserFor(upper_)));
  EXPECT_TRUE(isInFront(upper_));
  EXPECT_THAT(scene_.stacking(), ElementsAre(lower_, upper_));
}

TEST_F(OsascriptTest, ActiveWindowBelowAnotherIsRaised) {
  ASSERT_TRUE(scene_.focus(lower_));
  ASSERT_THAT(scene_.stacking(), ElementsAre(lower_, upper_));
  EXPECT_EQ(0, activateFront().code);
  EXPECT_THAT(scene_.takeRequests(), ElementsAre(askedByUserFor(lower_)));
  EXPECT_TRUE(test_support::waitUntil([&] { return scene_.stacking().back() == lower_; }));
  EXPECT_TRUE(isInFront(lower_));
}

TEST_F(OsascriptTest, RunsThroughShell) {
  const std::string path = helper("") + ":/usr/bin:/bin";
  const Ended ended = run({"/bin/sh", "-c", "osascript -e '" + std::string(kScript) + "'"},
                          {.environment = {{"DISPLAY", scene_.display().name()}, {"PATH", path}}});
  EXPECT_EQ(0, ended.code) << ended.error;
  EXPECT_THAT(scene_.takeRequests(), ElementsAre(askedByUserFor(upper_)));
}

TEST_F(OsascriptTest, TopmostWindowReplacesDestroyedActiveWindow) {
  const xcb_window_t gone = scene_.open("NORMAL");
  ASSERT_TRUE(scene_.destroy(gone));
  ASSERT_TRUE(isInFront(upper_));
  ASSERT_TRUE(scene_.focus(lower_));
  scene_.claimActive(gone);
  EXPECT_EQ(0, activateFront().code);
  EXPECT_THAT(scene_.takeRequests(), ElementsAre(askedByUserFor(upper_)));
  EXPECT_TRUE(isInFront(upper_));
}

TEST_F(OsascriptTest, TopmostWindowReplacesHiddenActiveWindow) {
  const xcb_window_t notice = scene_.open("NORMAL");
  ASSERT_TRUE(scene_.hide(notice));
  ASSERT_TRUE(isInFront(upper_));
  ASSERT_TRUE(scene_.focus(lower_));
  scene_.claimActive(notice);
  EXPECT_EQ(0, activateFront().code);
  EXPECT_THAT(scene_.takeRequests(), ElementsAre(askedByUserFor(upper_)));
  EXPECT_TRUE(isInFront(upper_));
}

TEST_F(OsascriptTest, PanelsAndWindowsOnOtherDesktopsAreSkipped) {
  const xcb_window_t panel = scene_.open("DOCK");
  const xcb_window_t elsewhere = scene_.open("NORMAL", 1);
  ASSERT_NE(0U, panel);
  ASSERT_NE(0U, elsewhere);
  ASSERT_EQ(panel, scene_.stacking().back());
  ASSERT_TRUE(scene_.focus(lower_));
  scene_.claimActive(XCB_WINDOW_NONE);
  EXPECT_EQ(0, activateFront().code);
  EXPECT_THAT(scene_.takeRequests(), ElementsAre(askedByUserFor(upper_)));
  EXPECT_TRUE(isInFront(upper_));
}

TEST_F(OsascriptTest, EmptyDesktopIsReported) {
  ASSERT_TRUE(scene_.destroy(lower_));
  ASSERT_TRUE(scene_.destroy(upper_));
  const Ended ended = activateFront();
  EXPECT_EQ(1, ended.code);
  EXPECT_EQ("osascript: no application is in front\n", ended.error);
  EXPECT_THAT(scene_.takeRequests(), ElementsAre());
}

TEST_F(OsascriptTest, KilledWindowManagerIsReported) {
  scene_.display().windowManager().kill();
  ASSERT_TRUE(scene_.display().windowManager().wait());
  const Ended ended = activateFront();
  EXPECT_EQ(1, ended.code);
  EXPECT_THAT(ended.error, HasSubstr("no window manager"));
}

TEST_F(OsascriptTest, UnknownScriptIsRefusedWithMessage) {
  const Ended ended = run({helper("osascript"), "-e", "tell application \"Finder\" to quit"},
                          {.environment = {{"DISPLAY", scene_.display().name()}}});
  EXPECT_EQ(2, ended.code);
  EXPECT_EQ("osascript: unknown script; try osascript --help\n", ended.error);
  EXPECT_THAT(scene_.takeRequests(), ElementsAre());
}

TEST(OsascriptWithoutDesktopTest, MissingWindowManagerIsReported) {
  WindowScene scene;
  ASSERT_TRUE(scene.start(false));
  const Ended ended = activateFrontOn(scene.display().name());
  EXPECT_EQ(1, ended.code);
  EXPECT_THAT(ended.error, HasSubstr("no window manager"));
}

TEST(OsascriptWithoutDesktopTest, MissingDisplayIsReported) {
  for (const std::optional<std::string>& display : {std::optional<std::string>(), {":4711"}, {"nonsense"}}) {
    const Ended ended = activateFrontOn(display);
    EXPECT_EQ(1, ended.code);
    EXPECT_EQ("osascript: cannot connect to the X display\n", ended.error);
  }
}

TEST(OsascriptWithoutDesktopTest, HelpIsPrinted) {
  const Ended ended = run({helper("osascript"), "--help"});
  EXPECT_EQ(0, ended.code);
  EXPECT_THAT(ended.output, StartsWith("Usage: osascript -e SCRIPT"));
  EXPECT_EQ("", ended.error);
}

}  // namespace
}  // namespace helper_test

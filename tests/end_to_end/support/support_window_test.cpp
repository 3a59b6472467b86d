#include <gmock/gmock.h>

#include <csignal>
#include <fstream>

#include "tests/end_to_end/support/support_fixture.h"
#include "tests/harness/desktop/x_connection.h"
#include "tests/harness/processes/file_contents.h"

namespace {

using test_support::waitUntil;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* closeLog =
    "log 6: -[nimbatrayAppDelegate supportWindowWillClose:]upportWindow will be close.";

// Opening, closing and input focus.
class SupportWindow : public SupportTest {
 protected:
  void expectOpensNewWindow() {
    timeline_.clear();
    static_cast<void>(takeFetches());
    openWindow();
    EXPECT_THAT(takeFetches(),
                ElementsAre(versionFile, bannerListFile, noticeFile, bannerFolder + std::string("red.ppm")));
  }
};

TEST_F(SupportWindow, FetchesVersionBannersNoticeAndPictureInOrder) {
  launchInPanel();
  static_cast<void>(takeFetches());
  openWindow();
  EXPECT_THAT(takeFetches(),
              ElementsAre(versionFile, bannerListFile, noticeFile, bannerFolder + std::string("red.ppm")));
  EXPECT_TRUE(waitForClickBeacon("support"));
  EXPECT_EQ(beaconsOf("support"), 1);
  EXPECT_THAT(console(), HasSubstr("recentversion : 9.0.0, currentversion : 1.0.0"));
}

TEST_F(SupportWindow, RequestsBypassCaches) {
  launchAndOpen();
  for (const auto& request : server_->requests()) {
    if (request.method != "GET") continue;
    const auto control = request.headers.find("Cache-Control");
    ASSERT_NE(control, request.headers.end()) << request.target;
    EXPECT_EQ(control->second, "no-cache");
  }
}

TEST_F(SupportWindow, IsCentredWithFixedSize) {
  launchAndOpen();
  EXPECT_EQ(window_.width, 420);
  EXPECT_EQ(window_.height, 240);
  EXPECT_NEAR(window_.x + 210, 640, 1);
  EXPECT_NEAR(window_.y + 120, 400, 1);
  const std::string hints = runOnDisplay({"xprop", "-id", std::to_string(window_.id), "WM_NORMAL_HINTS"});
  EXPECT_THAT(hints, HasSubstr("minimum size: 420 by 240"));
  EXPECT_THAT(hints, HasSubstr("maximum size: 420 by 240"));
}

TEST_F(SupportWindow, ChosenAgainWhileOpenFetchesButOpensNoSecondWindow) {
  launchAndOpen();
  ASSERT_TRUE(waitForClickBeacon("support"));
  timeline_.clear();
  static_cast<void>(takeFetches());
  choose();
  ASSERT_TRUE(waitForClickBeacon("support"));
  std::vector<std::string> fetched;
  ASSERT_TRUE(waitUntil([&] {
    for (const auto& target : takeFetches()) fetched.push_back(target);
    return fetched.size() >= 2;
  }));
  // The main thread handles this click after all work of the second choice.
  choose("Automount Off");
  ASSERT_TRUE(waitForText("pipe: -u"));
  EXPECT_TRUE(takeFetches().empty());
  EXPECT_THAT(fetched, ElementsAre(versionFile, bannerListFile));
  EXPECT_EQ(beaconsOf("support"), 1);
  EXPECT_EQ(supportWindows(), 1);
}

TEST_F(SupportWindow, ClosingByWindowManagerIsLoggedOnceAndReopensNewWindow) {
  launchAndOpen();
  closeWindow();
  EXPECT_TRUE(waitForText(closeLog));
  EXPECT_EQ(count(closeLog), 1);
  expectOpensNewWindow();
  closeWindow();
  terminateAgent();
}

TEST_F(SupportWindow, ClosingWithEscapeIsLoggedOnceAndReopensNewWindow) {
  launchAndOpen();
  press("Escape");
  ASSERT_TRUE(windowDisappears());
  EXPECT_TRUE(waitForText(closeLog));
  EXPECT_EQ(count(closeLog), 1);
  expectOpensNewWindow();
}

TEST_F(SupportWindow, ClosedWindowIsNotOrderedFront) {
  launchAndOpen();
  closeWindow();
  // The main thread handles this click after it would have ordered the window front.
  choose("Automount Off");
  ASSERT_TRUE(waitForText("pipe: -u"));
  EXPECT_EQ(supportWindows(), 0);
}

TEST_F(SupportWindow, FaqOpensSupportPageOnce) {
  launchAndOpen();
  timeline_.clear();
  clickAt(faqMiddle);
  EXPECT_TRUE(waitForText("run: open"));
  EXPECT_TRUE(waitForClickBeacon("faqbtn"));
  EXPECT_THAT(runs(), ElementsAre("run: open " + server_->origin() + "/support/tovalin/"));
  EXPECT_LT(position("log 6: -[nimbatrayAppDelegate faqBtnClick:] FAQ button click!"), position("run: open"));
  EXPECT_EQ(beaconsOf("faqbtn"), 1);
}

TEST_F(SupportWindow, HidesWhileOtherProgramIsActiveAndReturnsByMenu) {
  launchAndOpen();
  switchToAnotherProgram();
  ASSERT_TRUE(windowDisappears());
  EXPECT_EQ(count(closeLog), 0);
  timeline_.clear();
  static_cast<void>(takeFetches());
  choose();
  waitForSupportWindow();
  EXPECT_TRUE(waitForClickBeacon("support"));
  EXPECT_THAT(takeFetches(), ElementsAre(versionFile, bannerListFile));
  closeWindow();
}

TEST_F(SupportWindow, StaysWhileFocusedWindowOfOtherProgramIsGone) {
  launchAndOpen();
  display_.windowManager().signal(SIGSTOP);
  const test_support::XConnection x(display_.name());
  const xcb_window_t gone = xcb_generate_id(x.get());
  xcb_create_window(x.get(), XCB_COPY_FROM_PARENT, gone, x.root(), 0, 0, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
  xcb_change_property(x.get(), XCB_PROP_MODE_REPLACE, x.root(), x.atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW,
                      32, 1, &gone);
  xcb_set_input_focus(x.get(), XCB_INPUT_FOCUS_NONE, XCB_INPUT_FOCUS_NONE, XCB_CURRENT_TIME);
  x.synchronize();
  EXPECT_TRUE(windowStays());
  xcb_destroy_window(x.get(), gone);
  // Simulates the window manager, which would set the property again; the agent then checks the new window.
  xcb_change_property(x.get(), XCB_PROP_MODE_REPLACE, x.root(), x.atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW,
                      32, 1, &gone);
  x.synchronize();
  EXPECT_TRUE(windowStays());
  display_.windowManager().signal(SIGCONT);
  waitForSupportWindow();
  switchToAnotherProgram();
  EXPECT_TRUE(windowDisappears());
}

TEST_F(SupportWindow, HidesWithItsSheetAndBothReturnByMenu) {
  launchAndOpen();
  clickAt(logMiddle);
  ASSERT_TRUE(sheetIsUp());
  switchToAnotherProgram();
  ASSERT_TRUE(windowDisappears());
  choose();
  const auto again = test_support::waitForWindow(display_.name(), isSupportWindow);
  ASSERT_TRUE(again);
  window_ = *again;
  EXPECT_TRUE(becomesActive(window_.id));
  EXPECT_TRUE(sheetIsUp());
  press("Escape");
  EXPECT_TRUE(sheetIsGone());
  closeWindow();
}

TEST_F(SupportWindow, TabMovesFocusInOrderOnScreen) {
  launchAndOpen();
  timeline_.clear();
  // Update is focused initially.
  press("Tab");
  press("Return");
  ASSERT_TRUE(waitForText("log 6: -[nimbatrayAppDelegate faqBtnClick:]"));
  press("Tab");
  press("Return");
  ASSERT_TRUE(waitForText("log 6: -[nimbatrayAppDelegate logBtnClick:]"));
  ASSERT_TRUE(sheetIsUp());
  press("Escape");
  ASSERT_TRUE(sheetIsGone());
  press("Tab");
  press("Return");
  ASSERT_TRUE(waitForText("run: open http://banner.example/red"));
  press("Tab");
  press("Return");
  ASSERT_TRUE(waitForText("run: open http://one.example/a"));
  press("Tab");
  press("space");
  ASSERT_TRUE(waitForText("run: open http://two.example/b?c=d#e"));
  press("Tab");
  press("space");
  ASSERT_TRUE(waitForText("log 6: -[nimbatrayAppDelegate updateBtnClick:]"));
}

TEST_F(SupportWindow, TabSkipsBannerWithoutLink) {
  server_->put(bannerListFile, bannerList(""));
  launchAndOpen();
  timeline_.clear();
  for (int i = 0; i < 5; ++i) press("Tab");
  press("space");
  EXPECT_TRUE(waitForText("log 6: -[nimbatrayAppDelegate updateBtnClick:]"));
}

TEST_F(SupportWindow, FirstEnabledButtonIsFocusedAndPressedByEnter) {
  server_->putVersion("1.0.0");
  launchAndOpen();
  timeline_.clear();
  press("Return");
  EXPECT_TRUE(waitForText("run: open " + server_->origin() + "/support/tovalin/"));
  EXPECT_EQ(supportWindows(), 1);
}

TEST_F(SupportWindow, MissingOwnVersionIsShownAsNull) {
  const auto shownVersion = [&] {
    openWindow();
    return pictureOfPart({0, 105}, 135, 26);
  };
  const auto replaceInPlist = [&](const std::string& old, const std::string& text) {
    const std::string path = agentContents() + "/Info.plist";
    std::string list = test_support::contentsOf(path);
    const std::size_t key = list.find("<key>CFBundleVersion</key>");
    const std::size_t at = list.find(old, key);
    ASSERT_NE(at, std::string::npos);
    std::ofstream(path) << list.replace(at, old.size(), text);
  };
  // Capture the window with this word as its version.
  replaceInPlist("1.0.0", "(null)");
  launchInPanel();
  const auto word = shownVersion();
  terminateAgent();
  replaceInPlist("CFBundleVersion", "Nothing");
  launchInPanel();
  const auto nothing = shownVersion();
  EXPECT_TRUE(waitForText("log 3:  0etBundleVersion fail"));
  EXPECT_TRUE(nothing == word);
  terminateAgent();
  setServers(server_->origin());
  launchInPanel();
  EXPECT_FALSE(shownVersion() == word);
}

}  // namespace

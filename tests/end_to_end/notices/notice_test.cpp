#include <gmock/gmock.h>

#include <filesystem>

#include "tests/end_to_end/notices/notice_fixture.h"

namespace {

using test_support::activeWindowOn;
using test_support::ExitStatus;
using test_support::waitForWindow;
using test_support::waitUntil;
using test_support::XWindow;
using testing::ElementsAre;

// The notices as the user sees them.
using Notice = NoticeTest;

TEST_F(Notice, NonShowsAccessNoticeAndNoffHidesIt) {
  launch();
  send("-non");
  EXPECT_TRUE(shows(isAccessNotice));
  send("-noff");
  EXPECT_TRUE(hides(isAccessNotice));
  EXPECT_EQ(count("run: "), 0);
}

TEST_F(Notice, NeoffHidesLoadingNoticeAndActivatesFrontApplication) {
  launch();
  send("-neon");
  EXPECT_TRUE(shows(isLoadingNotice));
  send("-neoff");
  EXPECT_TRUE(hides(isLoadingNotice));
  const auto run = timeline_.waitFor("run: osascript");
  ASSERT_TRUE(run);
  EXPECT_THAT(
      run->arguments,
      ElementsAre("-e",
                  "tell application \"System Events\" \n set frontApp to name of first application whose "
                  "frontmost is true \n tell application frontApp \n activate \n end tell \n end tell"));
}

TEST_F(Notice, IsCentredAndFocused) {
  launch();
  for (const auto& [message, notice] :
       {std::pair("-non", &isAccessNotice), std::pair("-neon", &isLoadingNotice)}) {
    send(message);
    const auto window = waitForWindow(display_.name(), notice);
    ASSERT_TRUE(window);
    EXPECT_EQ(window->height, 80);
    EXPECT_NEAR(window->x + window->width / 2.0, 640, 1);
    EXPECT_NEAR(window->y + window->height / 2.0, 400, 1);
    EXPECT_TRUE(waitUntil([&] { return activeWindowOn(display_.name()) == window->id; }));
  }
}

TEST_F(Notice, StaysAboveOtherWindows) {
  launch();
  send("-non");
  EXPECT_TRUE(waitForWindow(display_.name(), [](const XWindow& window) {
    return isAccessNotice(window) && std::ranges::count(window.states, "_NET_WM_STATE_ABOVE") == 1;
  }));
}

TEST_F(Notice, IgnoresCloseRequestOfWindowManager) {
  launch();
  send("-non");
  const auto window = waitForWindow(display_.name(), isAccessNotice);
  ASSERT_TRUE(window);
  test_support::requestClose(display_.name(), window->id);
  runOnDisplay({"xdotool", "key", "Escape"});
  send("-neon");
  ASSERT_TRUE(shows(isLoadingNotice));
  EXPECT_TRUE(shows(isAccessNotice));
}

TEST_F(Notice, RepeatedCommandIsIgnored) {
  launch();
  for (const char* message : {"-non", "-non", "-noff", "-noff", "-non"}) send(message);
  EXPECT_TRUE(shows(isAccessNotice));
  EXPECT_EQ(count("log 3: "), 0);
}

TEST_F(Notice, OffWithoutOnIsNoOp) {
  launch();
  send("-noff");
  send("-neoff");
  send("-non");
  EXPECT_TRUE(shows(isAccessNotice));
  EXPECT_EQ(count("run: "), 0);
}

TEST_F(Notice, HidingOuterNoticeFirstEndsInnerRun) {
  launch();
  send("-neon");
  ASSERT_TRUE(shows(isLoadingNotice));
  send("-non");
  ASSERT_TRUE(shows(isAccessNotice));
  send("-neoff");
  EXPECT_TRUE(hides(isLoadingNotice));
  EXPECT_TRUE(shows(isAccessNotice));
  send("-noff");
  EXPECT_TRUE(hides(isAccessNotice));
  // Both runs have ended: the main thread shows the next notice from its outermost loop, and a quit ends it.
  send("-non");
  EXPECT_TRUE(shows(isAccessNotice));
  terminateAgent();
}

TEST_F(Notice, SecondShowCreatesNewWindow) {
  launch();
  send("-non");
  const auto first = waitForWindow(display_.name(), isAccessNotice);
  send("-noff");
  ASSERT_TRUE(hides(isAccessNotice));
  send("-non");
  const auto second = waitForWindow(display_.name(), isAccessNotice);
  ASSERT_TRUE(first && second);
  EXPECT_NE(first->id, second->id);
}

TEST_F(Notice, MenuWorksWhileNoticeIsShown) {
  ASSERT_TRUE(host_.start(bus_));
  launch();
  ASSERT_TRUE(host_.waitForEvent("registered"));
  send("-non");
  ASSERT_TRUE(shows(isAccessNotice));
  ASSERT_TRUE(host_.click("Automount Off"));
  EXPECT_TRUE(waitForText("pipe: -u"));
}

TEST_F(Notice, QuitEndsAgentFromTwoNestedNotices) {
  ASSERT_TRUE(host_.start(bus_));
  launch();
  ASSERT_TRUE(host_.waitForEvent("registered"));
  send("-non");
  send("-neon");
  ASSERT_TRUE(shows(isAccessNotice) && shows(isLoadingNotice));
  timeline_.clear();
  ASSERT_TRUE(host_.click("Quit Tovalin"));
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0});
  EXPECT_THAT(texts(), ElementsAre(killRun, "pipe: -toff", unloadRun, killRun));
  EXPECT_FALSE(std::filesystem::exists(pipePath));
  EXPECT_EQ(recordsLike(quitRecord), 2);
}

TEST_F(Notice, SignalEndsAgentFromOneAndFromTwoNotices) {
  for (const bool both : {false, true}) {
    launch();
    send("-non");
    if (both) send("-neon");
    ASSERT_TRUE(shows(isAccessNotice) && (!both || shows(isLoadingNotice)));
    terminateAgent();
    EXPECT_EQ(count(killRun), 1);
    EXPECT_EQ(recordsLike(quitRecord), both ? 2 : 1);
  }
}

TEST_F(Notice, MissingPictureStillShowsNotice) {
  install("/tmp/Applications/Tovalin.app");
  std::filesystem::remove(agentContents() + "/Resources/icon.png");
  launch();
  send("-non");
  EXPECT_TRUE(shows(isAccessNotice));
}

TEST_F(Notice, CommandsQueuedWhileMainThreadBlockedRunInOrder) {
  ASSERT_TRUE(host_.start(bus_));
  launch();
  ASSERT_TRUE(host_.waitForEvent("registered"));
  send("-non");
  ASSERT_TRUE(shows(isAccessNotice));
  ASSERT_TRUE(host_.click("Automount Off"));
  ASSERT_TRUE(waitForText("pipe: -u"));
  for (const char* message : {"-noff", "-non", "-neon", "-neoff", "-noff"}) send(message);
  EXPECT_TRUE(waitForText("run: osascript"));
  EXPECT_TRUE(hides(isLoadingNotice));
  EXPECT_TRUE(hides(isAccessNotice));
}

TEST_F(Notice, OuterNoticeIgnoresInputWhileInnerIsShown) {
  launch();
  send("-non");
  const auto outer = waitForWindow(display_.name(), isAccessNotice);
  ASSERT_TRUE(outer);
  send("-neon");
  const auto inner = waitForWindow(display_.name(), isLoadingNotice);
  ASSERT_TRUE(inner);
  // A click on the visible part of the outer notice raises the inner one.
  runOnDisplay(
      {"xdotool", "mousemove", std::to_string(outer->x + 20), std::to_string(outer->y + 70), "click", "1"});
  EXPECT_TRUE(waitUntil([&] { return activeWindowOn(display_.name()) == inner->id; }));
}

TEST_F(Notice, LossOfDisplayInTwoNoticesRunsProperEnd) {
  launch();
  send("-non");
  send("-neon");
  ASSERT_TRUE(shows(isAccessNotice) && shows(isLoadingNotice));
  display_.stop();
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 1});
  EXPECT_EQ(count(killRun), 1);
}

}  // namespace

#include <gmock/gmock.h>

#include <csignal>
#include <cstdlib>
#include <sstream>

#include "tests/end_to_end/support/support_fixture.h"
#include "tests/harness/processes/file_contents.h"

namespace {

using test_support::ExitStatus;
using test_support::waitForWindow;
using test_support::waitUntil;

constexpr const char* records = "/tmp/home/.local/share/Tovalin";

// Notices, and the agent's end, while the window is open.
class SupportInteraction : public SupportTest {
 protected:
  void openSheet() {
    clickAt(logMiddle);
    ASSERT_TRUE(sheetIsUp());
  }
  void update() {
    clickAt(updateMiddle);
    ASSERT_TRUE(waitForText("run: open /tmp/tovalinupdate.app"));
  }
  void show(const std::string& message, bool (*notice)(const test_support::XWindow&)) {
    send(message);
    const auto window = waitForWindow(display_.name(), notice);
    ASSERT_TRUE(window);
    ASSERT_TRUE(becomesActive(window->id));
  }

  // Expects that while the notice is shown, a click at `place` of the window and a close request have no
  // effect.
  void expectBlocked(const std::string& on, const std::string& off,
                     bool (*notice)(const test_support::XWindow&), Place place) {
    show(on, notice);
    timeline_.clear();
    clickAt(place);
    test_support::requestClose(display_.name(), window_.id);
    waitUntilInputIsProcessed();
    send(off);
    ASSERT_TRUE(hides(notice));
    EXPECT_EQ(count("log 6: -[nimbatrayAppDelegate"), 0) << testing::PrintToString(texts());
    expectFaqServes();
    expectClosesPermanently();
  }

  void hideBehindAnotherProgram() {
    switchToAnotherProgram();
    ASSERT_TRUE(windowDisappears());
  }
  // Returns the upper of these two windows.
  [[nodiscard]] std::uint32_t upperOf(std::uint32_t one, std::uint32_t other) {
    std::istringstream list(runOnDisplay({"xprop", "-root", "_NET_CLIENT_LIST_STACKING"}));
    std::uint32_t upper = 0;
    for (std::string word; list >> word;) {
      const auto window = static_cast<std::uint32_t>(std::strtoul(word.c_str(), nullptr, 16));
      if (window == one || window == other) upper = window;
    }
    return upper;
  }

  void expectFaqServes() {
    timeline_.clear();
    ASSERT_TRUE(waitUntil([&] { return supportWindows() == 1; }));
    clickAt(faqMiddle);
    EXPECT_TRUE(waitForText("log 6: -[nimbatrayAppDelegate faqBtnClick:]"));
  }
  void expectClosesPermanently() {
    closeWindow();
    timeline_.clear();
    openWindow();
    closeWindow();
    terminateAgent();
  }

  static int quitRecords() {
    int found = 0;
    for (const auto& entry : std::filesystem::directory_iterator(records)) {
      const std::string bytes = test_support::contentsOf(entry.path());
      for (std::size_t at = 0; (at = bytes.find("\x03\x13", at)) != std::string::npos; ++at) ++found;
    }
    return found;
  }
  void expectQuits() {
    choose("Quit Tovalin");
    EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0}) << console();
    EXPECT_EQ(texts().back(), killRun);
    EXPECT_EQ(count("pipe: -toff"), 1);
    EXPECT_EQ(quitRecords(), 2);
  }
  void expectEndsBySignal() {
    terminateAgent();
    EXPECT_EQ(texts().back(), killRun);
    EXPECT_EQ(count(killRun), 1);
    EXPECT_EQ(quitRecords(), 1);
  }
  void expectEndsWithTheBundle() {
    std::filesystem::rename(bundle_, "/tmp/Applications/Old.app");
    EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0}) << console();
    EXPECT_EQ(texts().back(), killRun);
    EXPECT_EQ(count(unloadRun), 1);
    EXPECT_EQ(quitRecords(), 1);
    std::filesystem::remove_all("/tmp/Applications/Old.app");
  }
};

TEST_F(SupportInteraction, AccessNoticeBlocksInputUntilHidden) {
  launchAndOpen();
  expectBlocked("-non", "-noff", isAccessNotice, faqMiddle);
}

TEST_F(SupportInteraction, LoadingNoticeBlocksInputUntilHidden) {
  launchAndOpen();
  expectBlocked("-neon", "-neoff", isLoadingNotice, updateMiddle);
}

TEST_F(SupportInteraction, BothNoticesDuringSheetLeaveSheetOpen) {
  launchAndOpen();
  openSheet();
  show("-non", isAccessNotice);
  show("-neon", isLoadingNotice);
  send("-neoff");
  send("-noff");
  ASSERT_TRUE(hides(isAccessNotice) && hides(isLoadingNotice));
  ASSERT_TRUE(sheetIsUp());
  runOnDisplay({"xdotool", "windowactivate", std::to_string(window_.id)});
  ASSERT_TRUE(becomesActive(window_.id));
  press("Escape");
  ASSERT_TRUE(sheetIsGone());
  expectFaqServes();
  expectClosesPermanently();
}

TEST_F(SupportInteraction, AccessNoticeAfterUpdateLeavesWindowWorking) {
  launchAndOpen();
  update();
  expectBlocked("-non", "-noff", isAccessNotice, faqMiddle);
}

TEST_F(SupportInteraction, LoadingNoticeAfterUpdateLeavesWindowWorking) {
  launchAndOpen();
  update();
  expectBlocked("-neon", "-neoff", isLoadingNotice, faqMiddle);
}

TEST_F(SupportInteraction, NoticeUnhidesWindowAndIsFocusedAboveIt) {
  launchAndOpen();
  hideBehindAnotherProgram();
  send("-non");
  const auto notice = waitForWindow(display_.name(), isAccessNotice);
  ASSERT_TRUE(notice);
  const auto support = waitForWindow(display_.name(), isSupportWindow);
  ASSERT_TRUE(support);
  EXPECT_TRUE(waitUntil([&] { return upperOf(notice->id, support->id) == notice->id; }));
  EXPECT_TRUE(becomesActive(notice->id));
  send("-noff");
  ASSERT_TRUE(hides(isAccessNotice));
  runOnDisplay({"xdotool", "windowactivate", "--sync", std::to_string(support->id)});
  waitForSupportWindow();
  expectFaqServes();
  expectClosesPermanently();
}

TEST_F(SupportInteraction, EndOfNoticeKeepsHiddenWindowHidden) {
  launchInPanel();
  send("-non");
  ASSERT_TRUE(shows(isAccessNotice));
  choose();
  ASSERT_TRUE(waitForWindow(display_.name(), isSupportWindow));
  runOnDisplay({"xdotool", "search", "--name", "^Support Tovalin$", "windowactivate", "--sync"});
  waitForSupportWindow();
  hideBehindAnotherProgram();
  send("-noff");
  ASSERT_TRUE(hides(isAccessNotice));
  waitUntilInputIsProcessed();
  EXPECT_EQ(supportWindows(), 0);
  choose();
  waitForSupportWindow();
  expectFaqServes();
  expectClosesPermanently();
}

TEST_F(SupportInteraction, EndOfNoticeReportedLateKeepsWindow) {
  launchAndOpen();
  show("-non", isAccessNotice);
  display_.windowManager().signal(SIGSTOP);
  send("-noff");
  ASSERT_TRUE(hides(isAccessNotice));
  EXPECT_TRUE(windowStays());
  display_.windowManager().signal(SIGCONT);
  waitForSupportWindow();
  expectFaqServes();
  expectClosesPermanently();
}

TEST_F(SupportInteraction, WindowOpenedOverNoticeAcceptsInputAfterNoticeEnds) {
  launchInPanel();
  send("-non");
  ASSERT_TRUE(shows(isAccessNotice));
  choose();
  ASSERT_TRUE(waitForWindow(display_.name(), isSupportWindow));
  send("-noff");
  ASSERT_TRUE(hides(isAccessNotice));
  runOnDisplay({"xdotool", "search", "--name", "^Support Tovalin$", "windowactivate", "--sync"});
  waitForSupportWindow();
  expectFaqServes();
  expectClosesPermanently();
}

TEST_F(SupportInteraction, QuitBehindOpenWindow) {
  launchAndOpen();
  expectQuits();
}

TEST_F(SupportInteraction, QuitBehindSheet) {
  launchAndOpen();
  openSheet();
  expectQuits();
}

TEST_F(SupportInteraction, QuitAfterUpdate) {
  launchAndOpen();
  update();
  expectQuits();
}

TEST_F(SupportInteraction, QuitBehindNoticeOverWindow) {
  launchAndOpen();
  show("-neon", isLoadingNotice);
  expectQuits();
}

TEST_F(SupportInteraction, QuitWhileWindowIsHidden) {
  launchAndOpen();
  hideBehindAnotherProgram();
  expectQuits();
}

TEST_F(SupportInteraction, SignalWhileWindowIsHidden) {
  launchAndOpen();
  hideBehindAnotherProgram();
  expectEndsBySignal();
}

TEST_F(SupportInteraction, LossOfBundleWhileWindowIsHidden) {
  launchAndOpen();
  hideBehindAnotherProgram();
  expectEndsWithTheBundle();
}

TEST_F(SupportInteraction, QuitBehindNoticeOverSheet) {
  launchAndOpen();
  openSheet();
  show("-non", isAccessNotice);
  expectQuits();
}

TEST_F(SupportInteraction, QuitBehindNoticeAfterUpdate) {
  launchAndOpen();
  update();
  show("-neon", isLoadingNotice);
  expectQuits();
}

TEST_F(SupportInteraction, SignalBehindOpenWindow) {
  launchAndOpen();
  expectEndsBySignal();
}

TEST_F(SupportInteraction, SignalBehindSheet) {
  launchAndOpen();
  openSheet();
  expectEndsBySignal();
}

TEST_F(SupportInteraction, SignalAfterUpdate) {
  launchAndOpen();
  update();
  expectEndsBySignal();
}

TEST_F(SupportInteraction, SignalBehindNoticeOverWindow) {
  launchAndOpen();
  show("-neon", isLoadingNotice);
  expectEndsBySignal();
}

TEST_F(SupportInteraction, SignalBehindNoticeOverSheet) {
  launchAndOpen();
  openSheet();
  show("-non", isAccessNotice);
  expectEndsBySignal();
}

TEST_F(SupportInteraction, SignalBehindNoticeAfterUpdate) {
  launchAndOpen();
  update();
  show("-non", isAccessNotice);
  expectEndsBySignal();
}

TEST_F(SupportInteraction, LossOfBundleBehindNoticeOverWindow) {
  launchAndOpen();
  show("-non", isAccessNotice);
  expectEndsWithTheBundle();
}

TEST_F(SupportInteraction, LossOfBundleBehindNoticeOverSheet) {
  launchAndOpen();
  openSheet();
  show("-neon", isLoadingNotice);
  expectEndsWithTheBundle();
}

TEST_F(SupportInteraction, LossOfBundleBehindNoticeAfterUpdate) {
  launchAndOpen();
  update();
  show("-neon", isLoadingNotice);
  expectEndsWithTheBundle();
}

TEST_F(SupportInteraction, LossOfBundleBehindOpenWindow) {
  launchAndOpen();
  expectEndsWithTheBundle();
}

TEST_F(SupportInteraction, LossOfBundleBehindSheet) {
  launchAndOpen();
  openSheet();
  expectEndsWithTheBundle();
}

TEST_F(SupportInteraction, EachLossOfBundleBehindSheetAndNoticeEndsAgentWithinTwoSeconds) {
  const auto withSheetAndNotice = [this] {
    launchAndOpen();
    openSheet();
    show("-neon", isLoadingNotice);
  };
  const auto isMoved = [] {
    std::filesystem::remove_all("/tmp/Programs");
    std::filesystem::rename("/tmp/Applications", "/tmp/Programs");
  };
  EXPECT_LT(timeToEnd(withSheetAndNotice, isMoved), maxTimeToEnd);
  EXPECT_LT(timeToEnd(withSheetAndNotice, [this] { removeAtOnce(bundle_); }), maxTimeToEnd);
}

TEST_F(SupportInteraction, LossOfBundleAfterUpdate) {
  launchAndOpen();
  update();
  expectEndsWithTheBundle();
}

}  // namespace

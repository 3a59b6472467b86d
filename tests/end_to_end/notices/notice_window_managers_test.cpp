#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "tests/end_to_end/notices/notice_fixture.h"
#include "tests/harness/desktop/window_manager.h"
#include "tests/harness/desktop/x_connection.h"

namespace {

using test_support::waitForWindow;
using test_support::waitUntil;
using test_support::XConnection;
using testing::HasSubstr;

using Command = std::vector<std::string>;

bool isInstalled(const std::string& program) {
  const char* const path = std::getenv("PATH");
  std::istringstream folders(path == nullptr ? "" : path);
  for (std::string folder; std::getline(folders, folder, ':');) {
    if (::access((std::filesystem::path(folder) / program).c_str(), X_OK) == 0) return true;
  }
  return false;
}

// A notice under each installed window manager.
class NoticeUnderWindowManager : public NoticeTest, public testing::WithParamInterface<Command> {
 protected:
  void SetUp() override {
    if (!isInstalled(GetParam()[0])) GTEST_SKIP() << GetParam()[0] << " is not installed";
    NoticeTest::SetUp();
    if (HasFatalFailure()) return;
    ASSERT_TRUE(replaceWindowManager());
    launch();
    send("-non");
    const auto window = waitForWindow(display_.name(), isAccessNotice);
    ASSERT_TRUE(window);
    notice_ = window->id;
    waitUntilActivationIsProcessed();
  }
  void TearDown() override {
    if (!IsSkipped()) NoticeTest::TearDown();
  }

  // The agent activates a new notice once it is mapped. Some window managers move an activated window to the
  // current desktop.
  void waitUntilActivationIsProcessed() {
    ASSERT_TRUE(test_support::waitForAnswerToPing(display_.name(), notice_));
    waitUntilRequestsAreProcessed();
  }
  // Returns once the window manager has processed all earlier requests: it has mapped another program's
  // window.
  void waitUntilRequestsAreProcessed() {
    test_support::ChildProcess program;
    ASSERT_TRUE(program.start({TOVALIN_SAMPLE_WINDOW_PROGRAM}, {.environment = environment_}));
    ASSERT_TRUE(waitForWindow(display_.name(), test_support::windowNamed("High")));
  }
  void requestMaximise() {
    const XConnection x(display_.name());
    ask(x, notice_, "_NET_WM_STATE",
        {1, x.atom("_NET_WM_STATE_MAXIMIZED_VERT"), x.atom("_NET_WM_STATE_MAXIMIZED_HORZ"), 2});
  }
  void requestShowDesktop(bool shown) {
    const XConnection x(display_.name());
    ask(x, x.root(), "_NET_SHOWING_DESKTOP", {shown ? 1U : 0U, 0, 0, 0});
  }
  void requestMinimise() { runOnDisplay({"xdotool", "windowminimize", std::to_string(notice_)}); }
  [[nodiscard]] bool noticeIsShown() {
    return waitForWindow(display_.name(),
                         [this](const test_support::XWindow& window) {
                           return window.id == notice_ && window.height == 80 && isAccessNotice(window);
                         })
        .has_value();
  }
  void expectNoticeHidesAndAgentEnds() {
    send("-noff");
    EXPECT_TRUE(hides(isAccessNotice));
    terminateAgent();
  }

  std::uint32_t notice_ = 0;

 private:
  static void ask(const XConnection& x, xcb_window_t window, const char* what,
                  const std::array<std::uint32_t, 4>& numbers) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = x.atom(what);
    std::ranges::copy(numbers, message.data.data32);
    xcb_send_event(x.get(), 0, x.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
    x.synchronize();
  }
  [[nodiscard]] bool replaceWindowManager() {
    display_.windowManager() = test_support::ChildProcess();
    const test_support::ChildOptions options{.environment = environment_,
                                             .output = test_support::Redirection::null(),
                                             .error = test_support::Redirection::null()};
    if (!manager_.start(GetParam(), options)) return false;
    // openbox may leave a window that it reads about during its start unmapped until another event arrives.
    if (GetParam()[0] == "openbox") return test_support::waitForWindowManager(display_.name());
    const XConnection x(display_.name());
    return waitUntil([&] {
      const auto window = x.numberProperty(x.root(), "_NET_SUPPORTING_WM_CHECK");
      return window && x.numberProperty(*window, "_NET_SUPPORTING_WM_CHECK") == window;
    });
  }

  test_support::ChildProcess manager_;
};

TEST_P(NoticeUnderWindowManager, MinimiseMaximiseAndCloseRequestsAreIgnored) {
  requestMinimise();
  waitUntilRequestsAreProcessed();
  EXPECT_TRUE(noticeIsShown());
  requestMaximise();
  test_support::requestClose(display_.name(), notice_);
  waitUntilRequestsAreProcessed();
  EXPECT_TRUE(noticeIsShown());
  expectNoticeHidesAndAgentEnds();
}

// kwin iconifies the windows of other desktops.
TEST_P(NoticeUnderWindowManager, NoticeMinimisedFromOtherDesktopReturnsOnItsOwnDesktop) {
  runOnDisplay({"xdotool", "set_num_desktops", "2"});
  runOnDisplay({"xdotool", "set_desktop", "1"});
  requestMinimise();
  waitUntilRequestsAreProcessed();
  runOnDisplay({"xdotool", "set_desktop", "0"});
  EXPECT_TRUE(noticeIsShown());
  expectNoticeHidesAndAgentEnds();
}

TEST_P(NoticeUnderWindowManager, NoticeMinimisedFromOtherDesktopReturnsWhenMovedToIt) {
  runOnDisplay({"xdotool", "set_num_desktops", "2"});
  runOnDisplay({"xdotool", "set_desktop", "1"});
  requestMinimise();
  waitUntilRequestsAreProcessed();
  runOnDisplay({"xdotool", "set_desktop_for_window", std::to_string(notice_), "1"});
  EXPECT_TRUE(noticeIsShown());
  expectNoticeHidesAndAgentEnds();
}

TEST_P(NoticeUnderWindowManager, NoticeMinimisedDuringShowDesktopReturnsAfterwards) {
  requestShowDesktop(true);
  requestMinimise();
  requestShowDesktop(false);
  waitUntilRequestsAreProcessed();
  EXPECT_TRUE(noticeIsShown());
  expectNoticeHidesAndAgentEnds();
}

TEST_P(NoticeUnderWindowManager, RequestsOnlyTitleAndMoveFunctions) {
  EXPECT_THAT(runOnDisplay({"xprop", "-id", std::to_string(notice_), "_MOTIF_WM_HINTS"}),
              HasSubstr("= 0x3, 0x4, 0xa, 0x0, 0x0"));
}

std::string nameOf(const testing::TestParamInfo<Command>& info) {
  return info.param[0];
}

INSTANTIATE_TEST_SUITE_P(Installed, NoticeUnderWindowManager,
                         testing::Values(Command{"openbox", "--sm-disable"},
                                         Command{"xfwm4", "--compositor=off"},
                                         Command{"marco", "--no-composite"}, Command{"kwin_x11"},
                                         Command{"mutter", "--x11"}),
                         nameOf);

// With openbox, which also iconifies the windows of other desktops.
class NoticeOnSeveralDesktops : public NoticeTest {};

TEST_F(NoticeOnSeveralDesktops, SwitchingDesktopsDoesNotMoveNotice) {
  ASSERT_TRUE(host_.start(bus_));
  launch();
  ASSERT_TRUE(host_.waitForEvent("registered"));
  send("-non");
  const auto notice = waitForWindow(display_.name(), isAccessNotice);
  ASSERT_TRUE(notice && test_support::waitForAnswerToPing(display_.name(), notice->id));
  runOnDisplay({"xdotool", "set_desktop", "1"});
  ASSERT_TRUE(hides(isAccessNotice));
  ASSERT_TRUE(host_.click("Automount Off"));
  ASSERT_TRUE(waitForText("pipe: -u"));
  EXPECT_THAT(runOnDisplay({"xdotool", "get_desktop"}), HasSubstr("1"));
  EXPECT_FALSE(waitForWindow(display_.name(), isAccessNotice, std::chrono::milliseconds(0)));
  runOnDisplay({"xdotool", "set_desktop", "0"});
  EXPECT_TRUE(shows(isAccessNotice));
}

}  // namespace

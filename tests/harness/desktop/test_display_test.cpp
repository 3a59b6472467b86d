#include "tests/harness/desktop/test_display.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <utility>

#include "tests/harness/desktop/x_connection.h"
#include "tests/harness/desktop/x_input.h"
#include "tests/harness/desktop/x_windows.h"

namespace test_support {
namespace {

using namespace std::chrono_literals;

std::string outputOf(const std::vector<std::string>& command) {
  ChildProcess child;
  if (!child.start(command) || !child.wait()) return {};
  return child.takeOutput();
}

TEST(TestDisplay, HasWindowManagerAfterStart) {
  TestDisplay display;
  ASSERT_TRUE(display.start());
  const XConnection connection(display.name());
  ASSERT_TRUE(connection.valid());
  EXPECT_TRUE(connection.numberProperty(connection.root(), "_NET_SUPPORTING_WM_CHECK"));
}

TEST(TestDisplay, WindowManagerIsOptional) {
  TestDisplay display;
  ASSERT_TRUE(display.start({.windowManager = false}));
  const XConnection connection(display.name());
  ASSERT_TRUE(connection.valid());
  EXPECT_FALSE(connection.numberProperty(connection.root(), "_NET_SUPPORTING_WM_CHECK"));
}

TEST(TestDisplay, TwoInstancesHaveDifferentNames) {
  TestDisplay first;
  TestDisplay second;
  ASSERT_TRUE(first.start({.windowManager = false}));
  ASSERT_TRUE(second.start({.windowManager = false}));
  EXPECT_NE(first.name(), second.name());
}

TEST(TestDisplay, HasRequestedSizeAndResolution) {
  TestDisplay display;
  ASSERT_TRUE(display.start({.width = 640, .height = 480, .dpi = 192, .windowManager = false}));
  const XConnection connection(display.name());
  ASSERT_TRUE(connection.valid());
  const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection.get())).data;
  EXPECT_EQ(screen->width_in_pixels, 640);
  EXPECT_EQ(screen->height_in_pixels, 480);
  EXPECT_NEAR(640 * 25.4 / screen->width_in_millimeters, 192, 2);
  EXPECT_EQ(connection.property(connection.root(), "RESOURCE_MANAGER"), "Xft.dpi:\t192\n");
}

TEST(TestDisplay, HasOneMonitorByDefault) {
  TestDisplay display;
  ASSERT_TRUE(display.start({.windowManager = false}));
  EXPECT_THAT(outputOf({"xrandr", "--display", display.name(), "--listmonitors"}),
              testing::AllOf(testing::StartsWith("Monitors: 1\n"), testing::HasSubstr(" 1280/")));
}

TEST(TestDisplay, HasRequestedMonitors) {
  TestDisplay display;
  ASSERT_TRUE(display.start({.monitors = {{640, 800, 0, 0}, {640, 600, 640, 0}}, .windowManager = false}));
  EXPECT_THAT(outputOf({"xrandr", "--display", display.name(), "--listmonitors"}),
              testing::AllOf(testing::StartsWith("Monitors: 2\n"), testing::HasSubstr(" 640/169x800/211+0+0"),
                             testing::HasSubstr(" 640/169x600/158+640+0")));
}

TEST(TestDisplay, ScreenshotShowsWholeDisplay) {
  TestDisplay display;
  ASSERT_TRUE(display.start({.width = 320, .height = 200, .windowManager = false}));
  ASSERT_TRUE(display.screenshot("/tmp/shot.png"));
  EXPECT_EQ(outputOf({"identify", "-format", "%m %wx%h", "/tmp/shot.png"}), "PNG 320x200");
}

TEST(TestDisplay, StopBreaksClientConnections) {
  TestDisplay display;
  ASSERT_TRUE(display.start());
  const XConnection connection(display.name());
  ASSERT_TRUE(connection.valid());
  display.stop();
  EXPECT_TRUE(waitUntil([&] { return connection.atom("WM_NAME") == XCB_ATOM_NONE && !connection.valid(); }));
  EXPECT_FALSE(display.screenshot("/tmp/no_shot.png"));
}

TEST(TestDisplay, ReusedServerKeepsNoStateOfPreviousDisplay) {
  std::string name;
  {
    TestDisplay first;
    ASSERT_TRUE(first.start({.monitors = {{640, 800, 0, 0}, {640, 600, 640, 0}}}));
    name = first.name();
  }
  TestDisplay next;
  ASSERT_TRUE(next.start({.windowManager = false}));
  EXPECT_EQ(next.name(), name);
  const XConnection connection(next.name());
  EXPECT_FALSE(connection.numberProperty(connection.root(), "_NET_SUPPORTING_WM_CHECK"));
  EXPECT_THAT(outputOf({"xrandr", "--display", next.name(), "--listmonitors"}),
              testing::StartsWith("Monitors: 1\n"));
}

std::pair<int, int> pointerOn(const XConnection& display) {
  const auto cookie = xcb_query_pointer(display.get(), display.root());
  const XcbReply<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(display.get(), cookie, nullptr));
  return reply ? std::pair<int, int>(reply->root_x, reply->root_y) : std::pair(0, 0);
}

bool repeatsKeys(const XConnection& display) {
  const auto cookie = xcb_get_keyboard_control(display.get());
  const XcbReply<xcb_get_keyboard_control_reply_t> reply(
      xcb_get_keyboard_control_reply(display.get(), cookie, nullptr));
  return reply && reply->global_auto_repeat == XCB_AUTO_REPEAT_MODE_ON;
}

void runOn(const std::string& display, const std::vector<std::string>& command) {
  ChildProcess tool;
  ASSERT_TRUE(tool.start(command, {.environment = {{"DISPLAY", display}}}));
  ASSERT_EQ(tool.wait(), ExitStatus{.code = 0});
}

void showWindows(ChildProcess& program, const std::string& display) {
  ASSERT_TRUE(program.start({TOVALIN_SAMPLE_WINDOW_PROGRAM}, {.environment = {{"DISPLAY", display}}}));
  ASSERT_TRUE(waitForWindow(display, windowNamed("High")));
}

// Starts a display, calls `leaveState`, and starts the next display. Expects the same server in its first
// state, and the same window manager if `kept`, otherwise another one.
void expectFreshDisplayAfter(const std::function<void(const std::string&)>& leaveState, bool kept) {
  TestDisplay next;
  pid_t manager = 0;
  std::string name;
  {
    TestDisplay first;
    ASSERT_TRUE(first.start());
    leaveState(first.name());
    manager = first.windowManager().pid();
    name = first.name();
  }
  ASSERT_TRUE(next.start());
  EXPECT_EQ(next.name(), name);
  EXPECT_EQ(next.windowManager().pid() == manager, kept);
  const XConnection connection(next.name());
  EXPECT_FALSE(connection.property(connection.root(), "WM_NAME"));
  EXPECT_FALSE(connection.property(connection.root(), "_NET_ACTIVE_WINDOW"));
  EXPECT_EQ(stateOf(connection).buttonsAndModifiers, 0);
  EXPECT_EQ(pointerOn(connection), (std::pair{640, 400}));
  EXPECT_TRUE(repeatsKeys(connection));
}

TEST(TestDisplay, TakesOverWindowManagerOfUnchangedDisplay) {
  expectFreshDisplayAfter(
      [](const std::string& display) { ASSERT_TRUE(moveMouse(display, 7, 9) && stopKeyRepeat(display)); },
      true);
}

TEST(TestDisplay, ResetsServerWithNewProperty) {
  const auto leaveName = [](const std::string& display) {
    const XConnection client(display);
    xcb_change_property(client.get(), XCB_PROP_MODE_REPLACE, client.root(), XCB_ATOM_WM_NAME, XCB_ATOM_STRING,
                        8, 4, "left");
    client.synchronize();
  };
  expectFreshDisplayAfter(leaveName, false);
}

TEST(TestDisplay, WaitsForEndOfProgram) {
  ChildProcess program;
  const auto endProgram = [&](const std::string& display) {
    showWindows(program, display);
    program.signal(SIGTERM);
  };
  expectFreshDisplayAfter(endProgram, true);
}

TEST(TestDisplay, HasNoWindowOfRunningProgram) {
  ChildProcess program;
  {
    TestDisplay first;
    ASSERT_TRUE(first.start());
    showWindows(program, first.name());
  }
  TestDisplay next;
  ASSERT_TRUE(next.start());
  EXPECT_TRUE(waitForNoWindow(next.name(), windowNamed("High"), 0ms));
}

TEST(TestDisplay, ResetsServerWithPressedKey) {
  const auto pressKey = [](const std::string& display) { runOn(display, {"xdotool", "keydown", "a"}); };
  expectFreshDisplayAfter(pressKey, false);
}

TEST(TestDisplay, ResetsServerThatAllowsMoreHosts) {
  const auto allowLocalUsers = [](const std::string& display) { runOn(display, {"xhost", "+local:"}); };
  expectFreshDisplayAfter(allowLocalUsers, false);
}

TEST(TestDisplay, ResetsServerWithPressedButton) {
  expectFreshDisplayAfter([](const std::string& display) { ASSERT_TRUE(pressMouse(display, 7, 9)); }, false);
}

TEST(TestDisplay, RestartsAfterStop) {
  TestDisplay display;
  ASSERT_TRUE(display.start());
  display.server().kill();
  ASSERT_TRUE(display.server().wait());
  EXPECT_TRUE(display.start());
}

}  // namespace
}  // namespace test_support

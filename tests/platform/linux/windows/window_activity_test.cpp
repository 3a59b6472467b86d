#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QMenu>
#include <QScreen>
#include <QWindow>

#include "platform/alert.h"
#include "platform/application.h"
#include "platform/linux/tray/menu_window.h"
#include "tests/harness/desktop/x_connection.h"
#include "tests/harness/desktop/x_input.h"
#include "tests/harness/desktop/x_windows.h"
#include "tests/harness/processes/child_process.h"
#include "tests/platform/linux/windows/support_layout.h"
#include "tests/platform/linux/windows/window_fixture.h"

namespace {

using platform::Application;

// A window that hides while another program is active, and another program.
class WindowActivity : public WindowFixture {
 protected:
  void SetUp() override { layout_.window->setHidesOnDeactivate(true); }
  void TearDown() override { layout_.window->close(); }

  [[nodiscard]] bool startOtherProgram() {
    if (!other_.start({SAMPLE_WINDOW_PROGRAM}, {.environment = {{"QT_SCALE_FACTOR", "1"}}})) return false;
    const auto low = test_support::waitForWindow(display(), test_support::windowNamed("Low"));
    return low && test_support::waitForWindow(display(), test_support::windowNamed("High"));
  }

  // Clicks the other program's window, which is in the upper left of the display.
  [[nodiscard]] bool turnToOtherProgram() {
    const auto low = test_support::waitForWindow(display(), test_support::windowNamed("Low"));
    return low && test_support::clickMouse(display(), low->x + 10, low->y + 10) &&
           serveEventsUntil([&] { return test_support::activeWindowOn(display()) == low->id; });
  }

  [[nodiscard]] bool hides() {
    return serveEventsUntil([this] { return !layout_.window->isVisible(); });
  }
  // Waits 500 ms, long enough for the window to hide.
  [[nodiscard]] bool stays() {
    return !serveEventsUntil([this] { return !layout_.window->isVisible(); }, std::chrono::milliseconds(500));
  }
  [[nodiscard]] bool isBackWithTheKeyboard() {
    return serveEventsUntil(
        [this] { return layout_.window->isVisible() && widgetOf(*layout_.window).isActiveWindow(); });
  }

  // The window manager grabs the keyboard while the user switches windows with Alt+Tab.
  [[nodiscard]] bool beginChoice() {
    if (!show(*layout_.window) || !startOtherProgram()) return false;
    layout_.window->makeKeyAndOrderFront();
    return isBackWithTheKeyboard() && keys({"keydown", "alt", "key", "Tab"}) &&
           serveEventsUntil([] { return QGuiApplication::applicationState() != Qt::ApplicationActive; });
  }
  [[nodiscard]] static bool endChoice() { return keys({"keyup", "alt"}); }
  [[nodiscard]] static bool keys(std::vector<std::string> actions) {
    actions.insert(actions.begin(), "xdotool");
    test_support::ChildProcess tool;
    return tool.start(actions) && tool.wait() == test_support::ExitStatus{.code = 0};
  }

  SupportLayout layout_;
  test_support::ChildProcess other_;
};

TEST_F(WindowActivity, HidesWhenOtherProgramIsActiveAndReturnsOnActivation) {
  ASSERT_TRUE(show(*layout_.window));
  ASSERT_TRUE(startOtherProgram());
  ASSERT_TRUE(turnToOtherProgram());
  ASSERT_TRUE(hides());
  EXPECT_TRUE(test_support::waitForNoWindow(display(), test_support::windowNamed("Support Tovalin")));
  Application::sharedApplication().activateIgnoringOtherApps(true);
  EXPECT_TRUE(isBackWithTheKeyboard());
}

TEST_F(WindowActivity, SheetHidesAndReturnsWithItsWindow) {
  ASSERT_TRUE(show(*layout_.window));
  ASSERT_TRUE(startOtherProgram());
  platform::Alert alert;
  alert.addButton("Continue");
  alert.addButton("Cancel");
  int code = 0;
  alert.beginSheetModalForWindow(layout_.window, [&](int ended) { code = ended; });
  ASSERT_TRUE(turnToOtherProgram());
  ASSERT_TRUE(hides());
  Application::sharedApplication().activateIgnoringOtherApps(true);
  ASSERT_TRUE(isBackWithTheKeyboard());
  press("Escape");
  EXPECT_TRUE(serveEventsUntil([&] { return code == 1001; }));
  EXPECT_TRUE(layout_.window->isVisible());
}

// A click in another window would activate the program and show the window again; a close request does not.
TEST_F(WindowActivity, ModalRunOfHiddenWindowDoesNotBlockOthers) {
  SupportLayout plain;
  plain.window->setTitle("Plain");
  ASSERT_TRUE(show(*plain.window));
  ASSERT_TRUE(show(*layout_.window));
  ASSERT_TRUE(startOtherProgram());
  bool reachedTheEnd = false;
  Application& application = Application::sharedApplication();
  application.performOnMainThread([&] {
    EXPECT_TRUE(turnToOtherProgram() && hides());
    const auto window = test_support::waitForWindow(display(), test_support::windowNamed("Plain"));
    if (window) test_support::requestClose(display(), window->id);
    EXPECT_TRUE(serveEventsUntil([&] { return !plain.window->isVisible(); }));
    EXPECT_FALSE(layout_.window->isVisible());
    reachedTheEnd = true;
    application.stopModal();
  });
  application.runModalForWindow(layout_.window);
  EXPECT_TRUE(reachedTheEnd);
}

TEST_F(WindowActivity, OrderFrontTakesEffectOnActivation) {
  ASSERT_TRUE(show(*layout_.window));
  ASSERT_TRUE(startOtherProgram());
  ASSERT_TRUE(turnToOtherProgram());
  ASSERT_TRUE(hides());
  layout_.window->makeKeyAndOrderFront();
  EXPECT_FALSE(layout_.window->isVisible());
  Application::sharedApplication().activateIgnoringOtherApps(true);
  EXPECT_TRUE(isBackWithTheKeyboard());
}

TEST_F(WindowActivity, ReturnsWhenOtherWindowOfProgramGetsFocus) {
  SupportLayout plain;
  ASSERT_TRUE(show(*layout_.window));
  ASSERT_TRUE(startOtherProgram());
  ASSERT_TRUE(turnToOtherProgram());
  ASSERT_TRUE(hides());
  ASSERT_TRUE(show(*plain.window));
  EXPECT_TRUE(serveEventsUntil([&] { return layout_.window->isVisible(); }));
  plain.window->close();
}

// openbox gives the input focus to any window of the active program, so the test reads the window's request
// (_NET_WM_USER_TIME).
TEST_F(WindowActivity, RequestsFocusWhenShownButNotWhenItReturns) {
  const auto asksForKeyboard = [] {
    const auto window = test_support::waitForWindow(display(), test_support::windowNamed("Support Tovalin"));
    const test_support::XConnection x(display());
    return window && x.numberProperty(window->id, "_NET_WM_USER_TIME") != 0U;
  };
  SupportLayout plain;
  plain.window->setTitle("Plain");
  ASSERT_TRUE(show(*layout_.window));
  EXPECT_TRUE(asksForKeyboard());
  ASSERT_TRUE(startOtherProgram());
  ASSERT_TRUE(turnToOtherProgram());
  ASSERT_TRUE(hides());
  plain.window->makeKeyAndOrderFront();
  ASSERT_TRUE(serveEventsUntil([this] { return layout_.window->isVisible(); }));
  EXPECT_FALSE(asksForKeyboard());
  layout_.window->orderOut();
  layout_.window->makeKeyAndOrderFront();
  EXPECT_TRUE(asksForKeyboard());
  plain.window->close();
}

TEST_F(WindowActivity, BlocksOthersAsSoonAsItReturnsForModalRun) {
  SupportLayout plain;
  plain.window->setTitle("Plain");
  ASSERT_TRUE(show(*plain.window));
  ASSERT_TRUE(show(*layout_.window));
  ASSERT_TRUE(startOtherProgram());
  bool reachedTheEnd = false;
  Application& application = Application::sharedApplication();
  application.performOnMainThread([&] {
    EXPECT_TRUE(turnToOtherProgram() && hides());
    EXPECT_TRUE(serveEventsUntil([this] { return !widgetOf(*layout_.window).windowHandle()->isExposed(); }));
    application.activateIgnoringOtherApps(true);
    EXPECT_FALSE(widgetOf(*plain.window).close());
    reachedTheEnd = true;
    application.stopModal();
  });
  application.runModalForWindow(layout_.window);
  EXPECT_TRUE(reachedTheEnd);
  plain.window->close();
}

// Some window managers can minimise a window without a minimise button.
TEST_F(WindowActivity, MinimisedWindowReturnsOnActivation) {
  ASSERT_TRUE(show(*layout_.window));
  const auto window = test_support::waitForWindow(display(), test_support::windowNamed("Support Tovalin"));
  ASSERT_TRUE(window);
  test_support::ChildProcess tool;
  ASSERT_TRUE(tool.start({"xdotool", "windowminimize", std::to_string(window->id)},
                         {.environment = {{"DISPLAY", display()}}}));
  ASSERT_TRUE(serveEventsUntil([this] { return widgetOf(*layout_.window).isMinimized(); }));
  Application::sharedApplication().activateIgnoringOtherApps(true);
  EXPECT_TRUE(isBackWithTheKeyboard());
  EXPECT_FALSE(widgetOf(*layout_.window).isMinimized());
}

TEST_F(WindowActivity, StaysWhenOtherWindowOfProgramGetsFocus) {
  ASSERT_TRUE(show(*layout_.window));
  SupportLayout plain;
  ASSERT_TRUE(show(*plain.window));
  EXPECT_TRUE(stays());
  plain.window->close();
}

// Simulates a window manager that does not let programs take the input focus.
TEST_F(WindowActivity, StaysIfShownWhileOtherProgramIsActive) {
  SupportLayout plain;
  ASSERT_TRUE(show(*plain.window));
  ASSERT_TRUE(startOtherProgram());
  ASSERT_TRUE(turnToOtherProgram());
  ASSERT_TRUE(serveEventsUntil([] { return QGuiApplication::applicationState() != Qt::ApplicationActive; }));
  layout_.window->setHidesOnDeactivate(true);
  widgetOf(*layout_.window).setAttribute(Qt::WA_ShowWithoutActivating);
  widgetOf(*layout_.window).show();
  EXPECT_TRUE(stays());
  plain.window->close();
}

TEST_F(WindowActivity, StaysWhileMenuOfProgramIsOpen) {
  ASSERT_TRUE(show(*layout_.window));
  QMenu menu;
  menu.addAction(QStringLiteral("Item"));
  menu.popup(QPoint(10, 10));
  ASSERT_TRUE(serveEventsUntil([&] { return menu.isVisible(); }));
  EXPECT_TRUE(stays());
}

// On Wayland the menu opens below a window. A window that came back would close it.
TEST_F(WindowActivity, StaysHiddenWhileMenuWindowIsOpen) {
  ASSERT_TRUE(show(*layout_.window));
  ASSERT_TRUE(startOtherProgram());
  ASSERT_TRUE(turnToOtherProgram());
  ASSERT_TRUE(hides());
  QMenu menu;
  menu.addAction(QStringLiteral("Item"));
  platform::MenuWindow menuWindow;
  menuWindow.open({.text = QStringLiteral("Open"), .menu = &menu});
  ASSERT_TRUE(serveEventsUntil([&] { return menu.isVisible(); }));
  EXPECT_FALSE(
      serveEventsUntil([this] { return layout_.window->isVisible(); }, std::chrono::milliseconds(500)));
  EXPECT_TRUE(menu.isVisible());
}

TEST_F(WindowActivity, ReturnsToItsPlace) {
  const QPoint place = QGuiApplication::primaryScreen()->geometry().bottomRight() - QPoint(440, 300);
  ASSERT_TRUE(show(*layout_.window));
  ASSERT_TRUE(startOtherProgram());
  widgetOf(*layout_.window).move(place);
  for (int times = 0; times < 2; ++times) {
    ASSERT_TRUE(turnToOtherProgram());
    ASSERT_TRUE(hides());
    Application::sharedApplication().activateIgnoringOtherApps(true);
    ASSERT_TRUE(isBackWithTheKeyboard());
    EXPECT_TRUE(serveEventsUntil([&] { return widgetOf(*layout_.window).pos() == place; }));
  }
}

using WindowChoice = WindowActivity;

TEST_F(WindowChoice, WindowStaysDuringWindowSwitchAndIfChosen) {
  ASSERT_TRUE(beginChoice());
  EXPECT_TRUE(stays());
  press("Escape");
  ASSERT_TRUE(endChoice());
  EXPECT_TRUE(isBackWithTheKeyboard());
}

TEST_F(WindowChoice, WindowHidesIfOtherProgramIsChosen) {
  ASSERT_TRUE(beginChoice());
  EXPECT_TRUE(stays());
  ASSERT_TRUE(endChoice());
  EXPECT_TRUE(hides());
}

TEST_F(WindowActivity, StaysWhileMenuOfOtherProgramHasFocus) {
  ASSERT_TRUE(show(*layout_.window));
  ASSERT_TRUE(startOtherProgram());
  const auto high = test_support::waitForWindow(display(), test_support::windowNamed("High"));
  ASSERT_TRUE(high);
  test_support::ChildProcess tool;
  ASSERT_TRUE(tool.start({"xprop", "-id", std::to_string(high->id), "-f", "_NET_WM_WINDOW_TYPE", "32a",
                          "-set", "_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_MENU"}));
  ASSERT_EQ(tool.wait(), test_support::ExitStatus{.code = 0});
  ASSERT_TRUE(test_support::clickMouse(display(), high->x + 5, high->y + 5));
  ASSERT_TRUE(serveEventsUntil([&] { return test_support::activeWindowOn(display()) == high->id; }));
  EXPECT_TRUE(stays());
  ASSERT_TRUE(turnToOtherProgram());
  EXPECT_TRUE(hides());
}

TEST_F(WindowActivity, OrderedOutOrClosedWindowDoesNotReturn) {
  SupportLayout closed;
  closed.window->setHidesOnDeactivate(true);
  ASSERT_TRUE(show(*closed.window));
  ASSERT_TRUE(show(*layout_.window));
  ASSERT_TRUE(startOtherProgram());
  ASSERT_TRUE(turnToOtherProgram());
  ASSERT_TRUE(hides());
  layout_.window->orderOut();
  closed.window->close();
  Application::sharedApplication().activateIgnoringOtherApps(true);
  EXPECT_FALSE(layout_.window->isVisible());
  EXPECT_FALSE(closed.window->isVisible());
}

TEST_F(WindowActivity, WindowWithoutHidesOnDeactivateStays) {
  layout_.window->setHidesOnDeactivate(false);
  ASSERT_TRUE(show(*layout_.window));
  ASSERT_TRUE(startOtherProgram());
  ASSERT_TRUE(turnToOtherProgram());
  EXPECT_TRUE(stays());
}

}  // namespace

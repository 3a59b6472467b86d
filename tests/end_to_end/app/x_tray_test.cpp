#include <gmock/gmock.h>

#include <algorithm>

#include "tests/end_to_end/agent_test.h"
#include "tests/end_to_end/app/tray_windows.h"
#include "tests/harness/desktop/x_connection.h"
#include "tests/harness/desktop/x_input.h"
#include "tests/harness/desktop/x_picture.h"

namespace {

using test_support::ChildOptions;
using test_support::ChildProcess;
using test_support::ExitStatus;
using test_support::Redirection;
using test_support::XWindow;
using tray_test::isAgents;
using tray_test::isIcon;
using tray_test::isMenu;

constexpr int halfALine = 12;
// The vertical middle of "Support Tovalin", above a separator and "Quit Tovalin", counted from the menu's
// lower edge.
constexpr int supportAboveEnd = 38;

// The agent in a real tray of the X screen.
class XTray : public AgentTest {
 protected:
  void startTray(const char* edge = "bottom") {
    ChildOptions options;
    options.environment = environment_;
    options.error = Redirection::null();
    ASSERT_TRUE(tray_.start({"trayer", "--edge", edge, "--SetDockType", "true", "--height", "28"}, options));
  }

  [[nodiscard]] std::optional<XWindow> dockedIcon() {
    return test_support::waitForWindow(display_.name(), isIcon);
  }

  // The tray may move the icon until it is drawn.
  void clickIcon(const char* button) {
    ASSERT_TRUE(test_support::waitUntil([this] { return isDrawn(dockedIcon()); }));
    const auto icon = dockedIcon();
    ASSERT_TRUE(icon);
    clickAt(*icon, button);
  }
  void clickAt(const XWindow& icon, const char* button) {
    runOnDisplay({"xdotool", "mousemove", std::to_string(icon.x + icon.width / 2),
                  std::to_string(icon.y + icon.height / 2), "click", button});
  }
  [[nodiscard]] bool isDrawn(const std::optional<XWindow>& icon) const {
    if (!icon) return false;
    const auto picture =
        test_support::pictureOf(display_.name(), {icon->x, icon->y, icon->width, icon->height});
    if (!picture) return false;
    for (int x = 0; x < icon->width; ++x) {
      if (!(picture->at(x, icon->height / 2) == picture->at(0, 0))) return true;
    }
    return false;
  }
  // Starts the agent and stops it as soon as the tray shows the icon's window, usually before its first
  // drawing.
  [[nodiscard]] std::optional<XWindow> stopAtDocking() {
    startAgent();
    std::optional<XWindow> icon;
    const bool docked = test_support::waitUntil([&] {
      agent_.signal(SIGSTOP);
      icon = test_support::waitForWindow(display_.name(), isIcon, std::chrono::milliseconds(0));
      if (!icon) agent_.signal(SIGCONT);
      return icon.has_value();
    });
    return docked ? icon : std::nullopt;
  }
  // Uses clicks, because a menu that has just opened may not have the input focus yet, and keys would be
  // lost.
  void clickMenu(const XWindow& menu, int below) {
    ASSERT_TRUE(test_support::clickMouse(display_.name(), menu.x + menu.width / 2, menu.y + below));
  }
  [[nodiscard]] bool escapeClosesMenu() {
    return test_support::waitUntil([&] {
      runOnDisplay({"xdotool", "key", "Escape"});
      return test_support::waitForNoWindow(display_.name(), isMenu, std::chrono::milliseconds(100));
    });
  }

  ChildProcess tray_;
};

TEST_F(XTray, DocksIcon) {
  startTray();
  launchAgent();
  const auto icon = dockedIcon();
  ASSERT_TRUE(icon);
  EXPECT_GE(icon->y, 800 - 28);
}

TEST_F(XTray, DocksInTrayThatStartsAfterAgent) {
  launchAgent();
  EXPECT_FALSE(test_support::waitForWindow(display_.name(), isIcon, std::chrono::milliseconds(200)));
  startTray();
  EXPECT_TRUE(dockedIcon());
}

TEST_F(XTray, DocksAgainInRestartedTray) {
  startTray();
  launchAgent();
  ASSERT_TRUE(dockedIcon());
  tray_.kill();
  ASSERT_TRUE(tray_.wait());
  ASSERT_TRUE(test_support::waitForNoWindow(display_.name(), isIcon));
  startTray();
  EXPECT_TRUE(dockedIcon());
  EXPECT_TRUE(agent_.running());
}

TEST_F(XTray, BothButtonsOpenMenu) {
  startTray();
  launchAgent();
  for (const char* button : {"1", "3"}) {
    clickIcon(button);
    EXPECT_TRUE(test_support::waitForWindow(display_.name(), isMenu)) << "button " << button;
    EXPECT_TRUE(escapeClosesMenu()) << "button " << button;
  }
}

TEST_F(XTray, ClickBeforeIconIsDrawnOpensMenu) {
  startTray();
  for (const char* button : {"1", "3"}) {
    bool hasClicked = false;
    for (int starts = 0; starts < 20 && !hasClicked; ++starts) {
      const auto icon = stopAtDocking();
      ASSERT_TRUE(icon);
      if (!isDrawn(icon)) {
        hasClicked = true;
        clickAt(*icon, button);
        agent_.signal(SIGCONT);
        EXPECT_TRUE(test_support::waitForWindow(display_.name(), isMenu)) << "button " << button;
      }
      agent_.kill();
      ASSERT_TRUE(agent_.wait());
      ASSERT_TRUE(test_support::waitForNoWindow(display_.name(), isIcon));
    }
    EXPECT_TRUE(hasClicked) << "the icon was always drawn at once";
  }
}

// Under the pointer, a second click would choose an item.
TEST_F(XTray, MenuOpensBesideIconOnTheSideWithSpace) {
  for (const char* edge : {"bottom", "top"}) {
    startTray(edge);
    launchAgent();
    for (const char* button : {"1", "3"}) {
      clickIcon(button);
      const auto menu = test_support::waitForWindow(display_.name(), isMenu);
      const auto icon = dockedIcon();
      ASSERT_TRUE(menu && icon) << edge;
      EXPECT_EQ(menu->x, std::min(icon->x, 1280 - menu->width)) << edge << button;
      EXPECT_EQ(edge == std::string("bottom") ? menu->y + menu->height : menu->y,
                edge == std::string("bottom") ? icon->y : icon->y + icon->height)
          << edge << button;
      EXPECT_TRUE(escapeClosesMenu());
    }
    terminateAgent();
    tray_.kill();
    ASSERT_TRUE(tray_.wait());
    timeline_.clear();
  }
}

TEST_F(XTray, LossOfDisplayRunsProperEndOnce) {
  for (const bool menuIsOpen : {false, true}) {
    timeline_.clear();
    startTray();
    launchAgent();
    ASSERT_TRUE(dockedIcon());
    if (menuIsOpen) {
      clickIcon("1");
      ASSERT_TRUE(test_support::waitForWindow(display_.name(), isMenu));
    }
    display_.stop();
    EXPECT_EQ(endOfAgent(), ExitStatus{.code = 1});
    EXPECT_EQ(count(killRun), 1);
    EXPECT_EQ(recordsLike(quitRecord), menuIsOpen ? 2 : 1);
    EXPECT_FALSE(std::filesystem::exists("/tmp/runtime/TovalinTray/helpers")) << "the end was incomplete";
    if (menuIsOpen) return;
    ASSERT_TRUE(display_.start());
    environment_["DISPLAY"] = display_.name();
  }
}

TEST_F(XTray, FirstLineSwitches) {
  startTray();
  launchAgent();
  clickIcon("1");
  const auto menu = test_support::waitForWindow(display_.name(), isMenu);
  ASSERT_TRUE(menu);
  clickMenu(*menu, halfALine);
  EXPECT_TRUE(waitForText("pipe: -u"));
}

// Qt treats the program as active while its menu is open; unhiding a window then would close the menu.
TEST_F(XTray, MenuStaysOpenAndUnhidesSupportWindow) {
  const auto isSupportWindow = test_support::windowNamed("Support Tovalin");
  const auto chooseSupport = [this] {
    clickIcon("1");
    const auto menu = test_support::waitForWindow(display_.name(), isMenu);
    ASSERT_TRUE(menu);
    clickMenu(*menu, menu->height - supportAboveEnd);
  };
  startTray();
  launchAgent();
  ASSERT_NO_FATAL_FAILURE(chooseSupport());
  ASSERT_TRUE(test_support::waitForWindow(display_.name(), isSupportWindow));
  ChildProcess program;
  ASSERT_TRUE(program.start({TOVALIN_SAMPLE_WINDOW_PROGRAM}, {.environment = environment_}));
  const auto other = test_support::waitForWindow(display_.name(), test_support::windowNamed("High"));
  ASSERT_TRUE(other);
  for (int times = 0; times < 2; ++times) {
    runOnDisplay({"xdotool", "windowactivate", std::to_string(other->id)});
    ASSERT_TRUE(test_support::waitForNoWindow(display_.name(), isSupportWindow));
    ASSERT_NO_FATAL_FAILURE(chooseSupport());
    const auto back = test_support::waitForWindow(display_.name(), isSupportWindow);
    ASSERT_TRUE(back);
    ASSERT_TRUE(
        test_support::waitUntil([&] { return test_support::activeWindowOn(display_.name()) == back->id; }));
  }
}

// Clicks just above the lower edge of the menu, which is the last line.
TEST_F(XTray, QuitIsLastLineAndEndsAgent) {
  startTray();
  launchAgent();
  clickIcon("3");
  const auto menu = test_support::waitForWindow(display_.name(), isMenu);
  ASSERT_TRUE(menu);
  clickMenu(*menu, menu->height - halfALine);
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0});
  EXPECT_EQ(count("pipe: -toff"), 1);
  EXPECT_TRUE(test_support::waitForNoWindow(display_.name(), isAgents));
}

}  // namespace

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "tests/end_to_end/agent_test.h"
#include "tests/harness/desktop/x_connection.h"
#include "tests/harness/desktop/x_input.h"
#include "tests/harness/desktop/x_picture.h"
#include "tests/harness/desktop/x_windows.h"
#include "tests/harness/processes/file_contents.h"

namespace {

using test_support::ChildOptions;
using test_support::ChildProcess;
using test_support::ExitStatus;
using test_support::Redirection;
using test_support::XWindow;

bool isAgents(const XWindow& window) {
  return window.className == "Tovalin";
}
bool isMenu(const XWindow& window) {
  return isAgents(window) && window.width > 100;
}
bool isIcon(const XWindow& window) {
  return isAgents(window) && !isMenu(window) && window.width >= 20;
}

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

// The tray of a panel: hosts on the bus that start late, end and restart.
class PanelTray : public AgentTest {};

TEST_F(PanelTray, DocksInHostThatStartsAfterAgent) {
  launchAgent();
  ASSERT_TRUE(host_.start(bus_));
  EXPECT_TRUE(host_.waitForEvent("registered"));
}

// Managers of other selections send the same MANAGER message. An icon created then would stay in the X tray
// permanently.
TEST_F(PanelTray, DocksInHostAfterManagerOfOtherSelection) {
  launchAgent();
  {
    const test_support::XConnection x(display_.name());
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = x.root();
    message.type = x.atom("MANAGER");
    ASSERT_NE(message.type, static_cast<xcb_atom_t>(XCB_ATOM_NONE));
    message.data.data32[1] = XCB_ATOM_STRING;
    xcb_send_event(x.get(), 0, x.root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    x.synchronize();
  }
  ASSERT_TRUE(host_.start(bus_));
  EXPECT_TRUE(host_.waitForEvent("registered"));
}

TEST_F(PanelTray, DocksOnlyOnceHostIsRegistered) {
  ASSERT_TRUE(host_.start(bus_));
  ASSERT_TRUE(host_.setHostRegistered(false));
  launchAgent();
  EXPECT_FALSE(host_.waitForEvent("registered", std::chrono::milliseconds(300)));
  ASSERT_TRUE(host_.setHostRegistered(true));
  EXPECT_TRUE(host_.waitForEvent("registered"));
}

TEST_F(PanelTray, DocksAgainInRestartedHost) {
  launchAgentInPanel();
  host_.process().kill();
  ASSERT_TRUE(host_.process().wait());
  ASSERT_TRUE(host_.start(bus_));
  EXPECT_TRUE(host_.waitForEvent("registered"));
  EXPECT_EQ(host_.menu().front().label, "Automount Off");
}

// Hosts that ignore ItemIsMenu open the item's menu themselves when these calls fail.
TEST_F(PanelTray, ActivateFailsSoThatHostOpensMenu) {
  launchAgentInPanel();
  EXPECT_EQ(host_.properties()["ItemIsMenu"], "true");
  ASSERT_TRUE(host_.activate(10, 10));
  EXPECT_TRUE(host_.waitForEvent("failed called Activate"));
  ASSERT_TRUE(host_.secondaryActivate(10, 10));
  EXPECT_TRUE(host_.waitForEvent("failed called SecondaryActivate"));
  EXPECT_FALSE(test_support::waitForWindow(display_.name(), isMenu, std::chrono::milliseconds(0)));
}

TEST_F(PanelTray, ContextMenuOpensAgentsOwnMenu) {
  launchAgentInPanel();
  ASSERT_TRUE(host_.contextMenu(300, 200));
  const auto menu = test_support::waitForWindow(display_.name(), isMenu);
  ASSERT_TRUE(menu);
  EXPECT_EQ(menu->x, 300);
  EXPECT_EQ(menu->y, 200);
}

TEST_F(PanelTray, DesktopWithoutPanelShowsNotification) {
  ChildProcess monitor;
  ASSERT_TRUE(monitor.start({"dbus-monitor", "--address", bus_.address(), "member='Notify'"},
                            {.environment = environment_}));
  launchAgent();
  EXPECT_TRUE(test_support::waitUntil([&] {
    const auto line = monitor.readLine();
    return line && line->find("Start Tovalin again to open its menu.") != std::string::npos;
  }));
}

// Desktops find the icon and the name of a window in the desktop entry whose StartupWMClass is its class.
TEST_F(PanelTray, WindowsHaveBundleIconAndClassOfDesktopEntry) {
  install("/tmp/Applications/Tovalin.app");
  runOnDisplay({"convert", "-size", "512x512", "xc:red", agentContents() + "/Resources/icon.png"});
  launchAgentInPanel();
  ASSERT_TRUE(host_.click("Support Tovalin"));
  const auto window =
      test_support::waitForWindow(display_.name(), test_support::windowNamed("Support Tovalin"));
  ASSERT_TRUE(window);
  const std::string entry =
      test_support::contentsOf(TOVALIN_PACKAGE_RECIPE "/com.kesmoor.tovalintrayagent.desktop");
  EXPECT_NE(entry.find("\nStartupWMClass=" + window->className + "\n"), std::string::npos);
  const std::string icon = runOnDisplay(
      {"xprop", "-id", std::to_string(window->id), "-f", "_NET_WM_ICON", "32c", " = $0+\n", "_NET_WM_ICON"});
  const std::string red = std::to_string(0xffff0000U);
  EXPECT_NE(icon.find("48, 48, " + red), std::string::npos) << icon;
}

// An X tray beside a host on the bus.
class TwoPanels : public AgentTest {
 protected:
  void startTray() {
    ASSERT_TRUE(tray_.start({"trayer", "--edge", "bottom", "--SetDockType", "true", "--height", "28"},
                            {.environment = environment_, .error = Redirection::null()}));
    ASSERT_TRUE(test_support::waitForWindow(display_.name(), test_support::windowNamed("panel")));
  }
  void endHost() {
    host_.process().kill();
    ASSERT_TRUE(host_.process().wait());
  }
  [[nodiscard]] bool appearsInTray() {
    return test_support::waitForWindow(display_.name(), isIcon).has_value();
  }
  [[nodiscard]] bool leavesTray() { return test_support::waitForNoWindow(display_.name(), isIcon); }

  ChildProcess tray_;
};

TEST_F(TwoPanels, LateHostReplacesTray) {
  startTray();
  launchAgent();
  ASSERT_TRUE(appearsInTray());
  ASSERT_TRUE(host_.start(bus_));
  EXPECT_TRUE(host_.waitForEvent("registered"));
  EXPECT_TRUE(leavesTray());
  EXPECT_EQ(host_.items().size(), 1U);
}

TEST_F(TwoPanels, TrayShowsIconWhileHostIsAway) {
  startTray();
  launchAgentInPanel();
  for (int times = 0; times < 2; ++times) {
    ASSERT_NO_FATAL_FAILURE(endHost());
    EXPECT_TRUE(appearsInTray());
    ASSERT_TRUE(host_.start(bus_));
    EXPECT_TRUE(host_.waitForEvent("registered"));
    EXPECT_TRUE(leavesTray());
  }
  EXPECT_EQ(host_.menu().front().label, "Automount Off");
}

TEST_F(TwoPanels, TrayShowsIconWhileWatcherHasNoHost) {
  startTray();
  ASSERT_TRUE(host_.start(bus_));
  ASSERT_TRUE(host_.setHostRegistered(false));
  launchAgent();
  EXPECT_TRUE(appearsInTray());
  EXPECT_TRUE(host_.items().empty());
  ASSERT_TRUE(host_.setHostRegistered(true));
  EXPECT_TRUE(host_.waitForEvent("registered"));
  EXPECT_TRUE(leavesTray());
  ASSERT_TRUE(host_.setHostRegistered(false));
  EXPECT_TRUE(appearsInTray());
  EXPECT_TRUE(host_.waitForEvent("unregistered"));
}

TEST_F(PanelTray, HostOnBusIsPreferredToXTray) {
  ChildProcess tray;
  ChildOptions options;
  options.environment = environment_;
  options.error = Redirection::null();
  ASSERT_TRUE(tray.start({"trayer", "--edge", "bottom"}, options));
  ASSERT_TRUE(test_support::waitForWindow(display_.name(), test_support::windowNamed("panel")));
  launchAgentInPanel();
  EXPECT_FALSE(test_support::waitForWindow(display_.name(), isIcon, std::chrono::milliseconds(300)));
}

TEST_F(PanelTray, ItemHasProgramNameAndStateInWords) {
  launchAgentInPanel();
  auto properties = host_.properties();
  EXPECT_EQ(properties["Id"], "Tovalin");
  EXPECT_EQ(properties["Title"], "Automount is on");
  EXPECT_EQ(properties["ToolTip"], "Automount is on");
  EXPECT_EQ(properties["Status"], "Active");
  host_.clearEvents();
  ASSERT_TRUE(host_.click("Automount Off"));
  EXPECT_TRUE(host_.waitForEvent("NewTitle"));
  EXPECT_TRUE(host_.waitForEvent("NewToolTip"));
  EXPECT_TRUE(host_.waitForEvent("NewIcon"));
  properties = host_.properties();
  EXPECT_EQ(properties["Title"], "Automount is off");
  EXPECT_EQ(properties["ToolTip"], "Automount is off");
}

TEST_F(PanelTray, IconHasThreeSizes) {
  launchAgentInPanel();
  EXPECT_EQ(host_.properties()["IconPixmap"], "20x20 40x40 80x80");
}

// Such a panel would paint a symbolic icon dark on dark.
TEST_F(PanelTray, IconNameIsEmptyInPanelThatDoesNotRecolour) {
  for (const char* panel : {"lxqt-panel", "xfce4-panel", "waybar"}) {
    ASSERT_TRUE(host_.start(bus_, panel));
    if (!agent_.running()) launchAgent();
    ASSERT_TRUE(host_.waitForEvent("registered"));
    const bool recolours = panel == std::string("xfce4-panel");
    EXPECT_EQ(host_.properties()["IconName"], recolours ? "tovalin-mount-on-symbolic" : "") << panel;
    EXPECT_EQ(host_.properties()["IconPixmap"], "20x20 40x40 80x80");
    host_.process().kill();
    ASSERT_TRUE(host_.process().wait());
  }
}

TEST_F(PanelTray, IconNameIsThatOfInstalledSymbol) {
  install("/tmp/Applications/Tovalin.app");
  const std::string theme = agentContents() + "/Resources/icons";
  const std::string symbols = theme + "/hicolor/symbolic/apps/";
  std::filesystem::remove_all(theme);
  std::filesystem::create_directories(symbols);
  std::ofstream(symbols + "tovalin-mount-on-symbolic.svg") << "<svg/>";
  launchAgentInPanel();
  auto properties = host_.properties();
  EXPECT_EQ(properties["IconName"], "tovalin-mount-on-symbolic");
  EXPECT_EQ(properties["IconThemePath"], theme);
  ASSERT_TRUE(host_.click("Automount Off"));
  EXPECT_TRUE(host_.waitForEvent("NewIcon"));
  properties = host_.properties();
  EXPECT_EQ(properties["IconName"], "");
  EXPECT_EQ(properties["IconPixmap"], "20x20 40x40 80x80");
}

}  // namespace

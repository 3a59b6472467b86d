#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "tests/end_to_end/agent_test.h"
#include "tests/end_to_end/app/tray_windows.h"
#include "tests/harness/processes/file_contents.h"

namespace {

using test_support::ChildOptions;
using test_support::ChildProcess;
using test_support::Redirection;
using tray_test::isIcon;
using tray_test::isMenu;

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

#include <signal.h>

#include <filesystem>
#include <string>

#include "tests/end_to_end/agent_test.h"
#include "tests/end_to_end/app/icon_in_panel.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* services = "/tmp/services";

// The agent with the real desktop portal and its GTK backend. The bus activates both on demand, and they read
// the setting that the desktop's own programs write.
class DesktopPortal : public AgentTest {
 protected:
  void SetUp() override {
    fs::remove_all("/tmp/home/.config");
    AgentTest::SetUp();
    if (HasFatalFailure()) return;
    gatherServices();
    ASSERT_TRUE(bus_.start(services));
    environment_["DBUS_SESSION_BUS_ADDRESS"] = bus_.address();
    environment_["XDG_CURRENT_DESKTOP"] = "GNOME";
    // As session start scripts do, for programs that the bus activates.
    runOnDisplay({"dbus-update-activation-environment", "DISPLAY", "XDG_CURRENT_DESKTOP"});
  }

  static void gatherServices() {
    fs::create_directories(services);
    for (const char* name : {"org.freedesktop.portal.Desktop", "org.freedesktop.impl.portal.desktop.gtk",
                             "org.freedesktop.impl.portal.PermissionStore", "ca.desrt.dconf"}) {
      const std::string file = name + std::string(".service");
      fs::copy_file("/usr/share/dbus-1/services/" + file, services + ("/" + file),
                    fs::copy_options::overwrite_existing);
    }
  }

  void setOnDesktop(const std::string& key, const std::string& value) {
    runOnDisplay({"gsettings", "set", "org.gnome.desktop.interface", key, value});
  }
  void setColorScheme(const std::string& value) { setOnDesktop("color-scheme", value); }

  [[nodiscard]] bool iconBecomes(const std::string& icon) {
    return test_support::waitUntil([&] { return panelShows(host_, agentContents() + "/Resources", icon); });
  }

  // Reads the setting as another program; activates the portal if it does not run.
  std::string queryPortal() {
    return runOnDisplay({"gdbus", "call", "--session", "--dest", "org.freedesktop.portal.Desktop",
                         "--object-path", "/org/freedesktop/portal/desktop", "--method",
                         "org.freedesktop.portal.Settings.Read", "org.freedesktop.appearance",
                         "color-scheme"});
  }

  void endPortal() {
    const std::string owner =
        runOnDisplay({"gdbus", "call", "--session", "--dest", "org.freedesktop.DBus", "--object-path",
                      "/org/freedesktop/DBus", "--method", "org.freedesktop.DBus.GetConnectionUnixProcessID",
                      "org.freedesktop.portal.Desktop"});
    const std::string prefix = "(uint32 ";
    ASSERT_TRUE(owner.starts_with(prefix)) << owner;
    const pid_t portal = std::stoi(owner.substr(prefix.size()));
    ASSERT_EQ(::kill(portal, SIGKILL), 0);
    ASSERT_TRUE(test_support::waitUntil([&] { return ::kill(portal, 0) != 0; }));
  }
};

TEST_F(DesktopPortal, PortalActivatedByAgentReportsDarkDesktop) {
  setColorScheme("prefer-dark");
  launchAgentInPanel();
  EXPECT_TRUE(iconBecomes("mount on reverse"));
}

TEST_F(DesktopPortal, RunningPortalReportsDarkDesktop) {
  setColorScheme("prefer-dark");
  ASSERT_EQ(queryPortal(), "(<<uint32 1>>,)\n");
  launchAgentInPanel();
  EXPECT_TRUE(iconBecomes("mount on reverse"));
}

TEST_F(DesktopPortal, IconFollowsEachChange) {
  launchAgentInPanel();
  EXPECT_TRUE(iconBecomes("mount on"));
  for (const char* notDark : {"prefer-light", "default"}) {
    setColorScheme("prefer-dark");
    EXPECT_TRUE(iconBecomes("mount on reverse"));
    setColorScheme(notDark);
    EXPECT_TRUE(iconBecomes("mount on")) << notDark;
  }
}

TEST_F(DesktopPortal, OtherSettingsAndChangesBetweenLightAndNoPreferenceKeepIcon) {
  launchAgentInPanel();
  setOnDesktop("gtk-theme", "Adwaita-dark");
  setOnDesktop("text-scaling-factor", "1.25");
  for (const char* notDark : {"prefer-light", "default", "prefer-light"}) setColorScheme(notDark);
  setColorScheme("prefer-dark");
  // The agent toggles its icon at each change, so after an unwanted toggle this change would show the other
  // icon.
  EXPECT_TRUE(iconBecomes("mount on reverse"));
}

TEST_F(DesktopPortal, RestartedPortalReportsChanges) {
  ASSERT_EQ(queryPortal(), "(<<uint32 0>>,)\n");
  launchAgentInPanel();
  endPortal();
  ASSERT_EQ(queryPortal(), "(<<uint32 0>>,)\n");
  setColorScheme("prefer-dark");
  EXPECT_TRUE(iconBecomes("mount on reverse"));
  EXPECT_TRUE(agent_.running());
}

}  // namespace

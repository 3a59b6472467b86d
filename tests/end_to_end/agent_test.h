#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/harness/desktop/portal_double.h"
#include "tests/harness/desktop/session_bus.h"
#include "tests/harness/desktop/test_display.h"
#include "tests/harness/desktop/tray_host_double.h"
#include "tests/harness/processes/timeline.h"

// From the end of the bundle to that of the agent, half a second of it the watch's.
inline constexpr std::chrono::milliseconds longestEnd{2000};

// The real agent, in a copy of its bundle, on a display and a session bus of the test's own. What it does is
// seen from outside: its messages, its log entries and the commands that it runs, on one time line.
// launchctl, open, osascript and killall are programs that report to the time line, and so does the hidden
// web view, as "run: beacon ADDRESS". The product server is one that refuses connections, unless the test has
// one.
class AgentTest : public testing::Test {
 protected:
  void SetUp() override;
  // Waits for the web view's end, so that no beacon reaches the next test.
  void TearDown() override;

  // What the property file of the main application says; nullopt leaves a key out.
  struct Properties {
    std::optional<bool> autorun = true;
    std::optional<bool> active = true;
  };

  // Copies the built bundle to `path`. `program` takes the agent's place where it is given.
  void install(const std::string& path, const std::string& program = {});
  void writeProperties(const Properties& properties);
  // Points the installed agent at this product server, an origin, and at this one for test uploads.
  void setServers(const std::string& product, const std::string& testUpload = kNobody);

  // Gives the installed agent the real web view, which loads its beacons from the product server.
  void installWebView();

  // Starts the installed agent, or at first one installed where it fits.
  void startAgent(const std::vector<std::string>& arguments = {});
  // ... and waits until it told the main application so.
  void launchAgent();
  // ... and until its icon is in the host's panel.
  void launchAgentInPanel();
  [[nodiscard]] test_support::ExitStatus endOfAgent();
  // How long the agent that `prepare` brings up takes from the removal of its bundle to its end: the shortest
  // of up to five tries, as a busy machine may hold up one or another. Each try has the bundle as it is now.
  [[nodiscard]] std::chrono::milliseconds timeToEnd(const std::function<void()>& prepare,
                                                    const std::function<void()>& removal);
  // Sends SIGTERM and expects a proper end.
  void terminateAgent();
  // Does this while the agent stands still, so that its watch comes to see the whole of it at once.
  void whileAgentStandsStill(const std::function<void()>& act);
  // A removal that took longer than the watch waits would be a change of the bundle, with which the watch is
  // over.
  void removeAtOnce(const std::string& folder);

  // What is on the time line; the beacons, which nobody waits for, apart.
  [[nodiscard]] std::vector<std::string> texts();
  [[nodiscard]] std::vector<std::string> beacons();
  // The address of a beacon of the installed agent without its server and path: "?category=C&C=V".
  [[nodiscard]] bool waitForBeacon(const std::string& query);
  // How many events begin so.
  [[nodiscard]] int count(const std::string& beginning);
  // Where in the time line the first such event stands; fails the test when there is none.
  [[nodiscard]] std::size_t position(const std::string& beginning);
  [[nodiscard]] bool waitForText(const std::string& beginning) {
    return timeline_.waitFor(beginning).has_value();
  }

  [[nodiscard]] std::string agentContents() const {
    return bundle_ + "/Contents/Resources/TovalinTray.app/Contents";
  }
  [[nodiscard]] std::string agentProgram() const { return agentContents() + "/MacOS/TovalinTray"; }

  // What stands in the usage file, where there is one, and how often these bytes are in it. Where midnight
  // has come meanwhile, the records of the new day are added.
  [[nodiscard]] static std::string recordedUsage();
  [[nodiscard]] static int recordsLike(const std::string& bytes);

  // What a running program has written in memory, its share of what others map too.
  [[nodiscard]] static long ownMemoryInKilobytes(pid_t process);
  // The agent's, with all the pictures that `showAll` takes. The toolkit drops one of the pictures that it
  // keeps every half a minute, which would pass for a gain, and the next window reads it again.
  [[nodiscard]] long memoryWithAllPictures(const std::function<void()>& showAll) const;
  // How many descriptors it has open.
  [[nodiscard]] long descriptors() const;

  // Runs a tool of the desktop on the test's display and returns what it prints.
  std::string runOnDisplay(const std::vector<std::string>& command);

  static constexpr const char* kNobody = "http://127.0.0.1:1";

  test_support::SessionBus bus_;
  test_support::TestDisplay display_;
  test_support::TrayHostDouble host_;
  test_support::PortalDouble portal_;
  test_support::Timeline timeline_;
  std::string bundle_;
  std::map<std::string, std::optional<std::string>> environment_;
  test_support::ChildProcess agent_;

 private:
  [[nodiscard]] long settledMemory() const;
};

// ... installed where an application is looked for.
class InstalledAgentTest : public AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    if (!HasFatalFailure()) install("/tmp/Applications/Tovalin.app");
  }
};

// The usage files, the oldest day's first; none where there is no folder for them yet.
[[nodiscard]] std::vector<std::filesystem::path> usageFiles();

inline constexpr const char* unloadRun =
    "run: launchctl unload -F /Library/LaunchAgents/com.kesmoor.tovalintrayagent.plist";
// How records begin.
inline const std::string startRecord =
    "\x01\x05"
    "1.0.0\x07"
    "1.0.0.0\x02\x13";
inline const std::string quitRecord = "\x03\x13";
inline constexpr const char* killRun = "run: killall tovalinnotification";

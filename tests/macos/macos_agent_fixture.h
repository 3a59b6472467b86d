#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/harness/desktop/test_display.h"
#include "tests/harness/desktop/x_picture.h"
#include "tests/harness/desktop/x_windows.h"
#include "tests/harness/processes/child_process.h"
#include "tests/harness/processes/timeline.h"
#include "tests/harness/servers/product_server_double.h"

// The agent of platform/macos under GNUstep, in a copy of its bundle, on a private display. launchctl, open,
// osascript, killall and the hidden web view are programs that report to the timeline.
class MacosAgentTest : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Replaces a command by a program that reports to the timeline.
  static void record(const std::string& command);
  static void stopRecording(const std::string& command);
  // Replaces the agent by the Linux one, from the bundle below TOVALIN_BUNDLE_ROOT.
  void installLinuxAgent();
  void installMacosAgent();
  void setServers(const std::string& product, const std::string& testUpload = kClosedServer);
  void writeProperties(bool autorun, bool active);
  // Starts the agent, and waits for its "-ton" and until it listens.
  void launch();
  // Starts a second process and waits for its end.
  void startAgain();
  [[nodiscard]] test_support::ExitStatus endOfAgent();
  void terminateAgent();

  void send(const std::string& message);
  // Opens the menu by a click on the status item, and clicks the line with this number, counting separators.
  void choose(int line);
  void clickIn(const std::string& window, int x, int fromBottom);
  // Puts an updater into the agent's bundle.
  void putUpdater() const;
  [[nodiscard]] bool shows(const test_support::WindowPredicate& fits);
  [[nodiscard]] bool hides(const test_support::WindowPredicate& fits);
  static void postNotification(const std::string& name);
  void saveScreen(const std::string& name) const;

  // Returns the timeline without beacons, because the agent does not wait for them.
  [[nodiscard]] std::vector<std::string> texts();
  [[nodiscard]] bool waitForText(const std::string& beginning) {
    return timeline_.waitFor(beginning).has_value();
  }
  [[nodiscard]] bool waitForBeacon(const std::string& query);
  [[nodiscard]] int count(const std::string& beginning);

  [[nodiscard]] std::string contents() const {
    return bundle_ + "/Contents/Resources/TovalinTray.app/Contents";
  }

  static constexpr const char* kClosedServer = "http://127.0.0.1:1";
  static constexpr const char* folder = "/tmp/home/Library/Application Support/Tovalin";
  static constexpr const char* linuxFolder = "/tmp/home/.local/share/Tovalin";

  test_support::TestDisplay display_;
  test_support::Timeline timeline_;
  std::string bundle_ = "/tmp/Applications/Tovalin.app";
  std::map<std::string, std::optional<std::string>> environment_;
  test_support::ChildProcess agent_;

 private:
  void install(const std::string& built);
};

// Line numbers in the menu.
inline constexpr int switchLine = 0, websiteLine = 6, supportLine = 8, quitLine = 10;

// The product server's notices, of which the support window shows two.
inline constexpr const char* noticeList =
    "<plist version=\"1.0\"><dict><key>notice_1</key><dict><key>subject</key><string>The first "
    "notice</string>"
    "<key>link</key><string>http://one.example/a</string></dict><key>notice_2</key><dict><key>subject</key>"
    "<string>The second "
    "notice</string><key>link</key><string>http://two.example/b</string></dict></dict></plist>";

// Return the events other than beacons, and the queries of the beacons.
[[nodiscard]] std::vector<std::string> actionsAmong(const std::vector<test_support::TimelineEvent>& events);
[[nodiscard]] std::vector<std::string> beaconsAmong(const std::vector<test_support::TimelineEvent>& events);

// Returns whether the area is painted: before, it has one colour.
[[nodiscard]] bool hasSeveralColours(const std::optional<test_support::XPicture>& picture);

[[nodiscard]] bool isMenu(const test_support::XWindow& window);

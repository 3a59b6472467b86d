#include <ctime>
#include <filesystem>
#include <fstream>
#include <optional>
#include <regex>
#include <string>
#include <vector>

#include "tests/harness/collect_messages.h"
#include "tests/harness/desktop/x_picture.h"
#include "tests/harness/processes/file_contents.h"
#include "tests/harness/processes/wait_until.h"
#include "tests/macos/macos_agent_fixture.h"

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using test_support::contentsOf;
using test_support::ExitStatus;
using test_support::ProductServerDouble;
using test_support::waitUntil;
using test_support::windowNamed;

constexpr const char* unloadRun =
    "run: launchctl unload -F /Library/LaunchAgents/com.kesmoor.tovalintrayagent.plist";
constexpr const char* killRun = "run: killall tovalinnotification";
bool isAccessNotice(const test_support::XWindow& window) {
  return window.name == "Tovalin Notification" && window.width == 420;
}
bool isLoadingNotice(const test_support::XWindow& window) {
  return window.name == "Tovalin Notification" && window.width == 260;
}

std::string fileOfToday() {
  const std::time_t now = std::time(nullptr);
  char name[30];
  std::strftime(name, sizeof name, "Tovalin_%Y_%m_%d.dat", std::localtime(&now));
  return name;
}

using MacosAgent = MacosAgentTest;

TEST_F(MacosAgent, LaunchRunsItsStepsInOrder) {
  writeProperties(false, true);
  launch();
  EXPECT_EQ(texts(), (std::vector<std::string>{"log 3: Tovalin working path [" + bundle_ + "]", unloadRun,
                                               "log 3: bActive : 1", "log 3: Dark Mode : 0", "pipe: -ton",
                                               "log 6: read_pipe read pipe message : "}));
  EXPECT_TRUE(waitForBeacon("?category=applaunch&applaunch=start"));
  EXPECT_TRUE(waitForBeacon("?category=applaunch&applaunch=version1.0.0"));
  EXPECT_TRUE(contentsOf(std::string(folder) + "/" + fileOfToday()).starts_with("TVLD"));
  saveScreen("macos-launch");
}

TEST_F(MacosAgent, SwitchSendsMessageAndChangesItsTitle) {
  launch();
  choose(switchLine);
  ASSERT_TRUE(waitForText("pipe: -u"));
  EXPECT_TRUE(waitForBeacon("?category=clickaction&clickaction=turnoff"));
  saveScreen("macos-switched");
  choose(switchLine);
  ASSERT_TRUE(waitForText("pipe: -m"));
  EXPECT_TRUE(waitForBeacon("?category=clickaction&clickaction=turnon"));
}

TEST_F(MacosAgent, LinesOfMenuOpenPages) {
  struct Link {
    int line;
    std::string address;
  };
  const std::string server = kClosedServer;
  launch();
  for (const Link& link : {
           Link{2, "https://www.facebook.com/kesmoor"},
           Link{3, "https://www.facebook.com/sharer/sharer.php?u=" + server + "/tovalin"},
           Link{4, "https://twitter.com/intent/tweet?text=%5BTovalin%5D%20Easily%20manage"},
           Link{websiteLine, server + "/tovalin"},
           Link{7, server + "/tovalin/review"},
       }) {
    timeline_.clear();
    choose(link.line);
    EXPECT_TRUE(waitForText("run: open " + link.address)) << link.line;
  }
}

TEST_F(MacosAgent, QuitRunsProperEnd) {
  launch();
  timeline_.clear();
  choose(quitLine);
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0});
  EXPECT_EQ(texts(), (std::vector<std::string>{killRun, "pipe: -toff", unloadRun, killRun}));
  EXPECT_FALSE(fs::exists("/tmp/KMNOTIPIPE"));
}

TEST_F(MacosAgent, SignalInNestedModalRunsRunsProperEnd) {
  launch();
  send("-non");
  send("-neon");
  ASSERT_TRUE(shows(isAccessNotice) && shows(isLoadingNotice));
  terminateAgent();
  EXPECT_EQ(count(killRun), 1);
}

struct NoticeOrder {
  std::string outer;
  std::string inner;
  int scripts;  // run at each "-neoff" of the orders so far
};
bool isOf(const std::string& command, const test_support::XWindow& window) {
  return command == "-non" ? isAccessNotice(window) : isLoadingNotice(window);
}
std::string hiding(const std::string& command) {
  return command == "-non" ? "-noff" : "-neoff";
}

TEST_F(MacosAgent, InnerNoticeHiddenFirstLeavesOuterOnScreen) {
  launch();
  for (const NoticeOrder& order : {NoticeOrder{"-non", "-neon", 1}, NoticeOrder{"-neon", "-non", 2}}) {
    const auto isOuter = [&](const auto& window) { return isOf(order.outer, window); };
    const auto isInner = [&](const auto& window) { return isOf(order.inner, window); };
    send(order.outer);
    ASSERT_TRUE(shows(isOuter));
    send(order.inner);
    ASSERT_TRUE(shows(isInner));
    saveScreen("macos-notices" + order.outer);
    send(hiding(order.inner));
    ASSERT_TRUE(hides(isInner));
    ASSERT_TRUE(shows(isOuter));
    send(hiding(order.outer));
    ASSERT_TRUE(hides(isOuter));
    ASSERT_TRUE(waitUntil([&] { return count("run: osascript") == order.scripts; }));
  }
}

TEST_F(MacosAgent, NoticeHiddenFirstEndsTheOtherRunAndLeavesItOnScreen) {
  launch();
  send("-neon");
  ASSERT_TRUE(shows(isLoadingNotice));
  send("-non");
  ASSERT_TRUE(shows(isAccessNotice));
  send("-neoff");
  ASSERT_TRUE(hides(isLoadingNotice));
  ASSERT_TRUE(waitForText("run: osascript -e"));
  ASSERT_TRUE(shows(isAccessNotice));
  send("-noff");
  ASSERT_TRUE(hides(isAccessNotice));
}

TEST_F(MacosAgent, OuterNoticeHiddenFirstEndsInnerRun) {
  struct Case {
    const char* outer;
    const char* inner;
    int scripts;  // run at each "-neoff"
  };
  for (const Case& order : {Case{"-non", "-neon", 1}, Case{"-neon", "-non", 2}}) {
    if (!agent_.running()) launch();
    const auto isOuter = order.outer == "-non"s ? isAccessNotice : isLoadingNotice;
    const auto isInner = order.inner == "-non"s ? isAccessNotice : isLoadingNotice;
    send(order.outer);
    ASSERT_TRUE(shows(isOuter));
    send(order.inner);
    ASSERT_TRUE(shows(isInner));
    send(order.outer == "-non"s ? "-noff" : "-neoff");
    ASSERT_TRUE(hides(isOuter));
    ASSERT_TRUE(shows(isInner));
    send(order.inner == "-non"s ? "-noff" : "-neoff");
    ASSERT_TRUE(hides(isInner));
    ASSERT_TRUE(waitUntil([&] { return count("run: osascript") == order.scripts; }));
  }
}

TEST_F(MacosAgent, NoticesReopenAfterHiding) {
  launch();
  for (int i = 0; i < 3; ++i) {
    send("-non");
    ASSERT_TRUE(shows(isAccessNotice));
    send("-noff");
    ASSERT_TRUE(hides(isAccessNotice));
    send("-neon");
    ASSERT_TRUE(shows(isLoadingNotice));
    send("-neoff");
    ASSERT_TRUE(hides(isLoadingNotice));
  }
}

TEST_F(MacosAgent, CollectedDataIsRecorded) {
  launch();
  send(test_support::deviceMessage("phone"));
  EXPECT_TRUE(waitUntil([] {
    const std::string bytes = contentsOf(std::string(folder) + "/" + fileOfToday());
    return bytes.find("\x05phone") != std::string::npos;
  }));
}

TEST_F(MacosAgent, PastFileIsUploadedAndRemoved) {
  ProductServerDouble server;
  setServers(server.origin());
  fs::create_directories(folder);
  std::ofstream(std::string(folder) + "/Tovalin_2020_01_02.dat") << "records";
  launch();
  ASSERT_TRUE(server.waitForRequests("POST", 1));
  EXPECT_TRUE(waitUntil([] { return !fs::exists(std::string(folder) + "/Tovalin_2020_01_02.dat"); }));
  for (const auto& request : server.requests()) {
    if (request.method != "POST") continue;
    EXPECT_EQ(request.body.size(), 241 + "records"s.size());
  }
}

TEST_F(MacosAgent, NewerVersionRunsNotificationHelper) {
  ProductServerDouble server;
  server.putVersion("9.0.0");
  setServers(server.origin());
  launch();
  EXPECT_TRUE(waitForText("run: open -a " + bundle_ +
                          "/Contents/Resources/tovalinnotification.app --args -title "
                          "Tovalin Notification"));
}

TEST_F(MacosAgent, SupportWindowWithoutNetworkClosesAndReopens) {
  launch();
  for (int i = 0; i < 2; ++i) {
    timeline_.clear();
    choose(supportLine);
    const auto window = test_support::waitForWindow(display_.name(), windowNamed("Support Tovalin"));
    ASSERT_TRUE(window);
    EXPECT_EQ(window->width, 420);
    EXPECT_EQ(window->height, 240);
    EXPECT_TRUE(waitForBeacon("?category=clickaction&clickaction=support"));
    saveScreen("macos-support-offline");
    test_support::requestClose(display_.name(), window->id);
    ASSERT_TRUE(hides(windowNamed("Support Tovalin")));
    EXPECT_TRUE(
        waitForText("log 6: -[nimbatrayAppDelegate supportWindowWillClose:]upportWindow will be close."));
  }
}

TEST_F(MacosAgent, FaqButtonOpensPage) {
  ProductServerDouble server;
  server.putVersion("9.0.0");
  server.put("/product/nimba/binary/tovalinnotice.xml", noticeList);
  setServers(server.origin());
  launch();
  choose(supportLine);
  ASSERT_TRUE(shows(windowNamed("Support Tovalin")));
  saveScreen("macos-support-online");
  const std::string console = agent_.takeErrorOutput();
  EXPECT_TRUE(std::regex_search(
      console, std::regex("[0-9:.]+ TovalinTray\\[[0-9:]+\\] recentversion : 9\\.0\\.0, currentversion : ")))
      << console;
  clickIn("Support Tovalin", 210, 62);
  EXPECT_TRUE(waitForText("run: open " + server.origin() + "/support/tovalin/"));
}

TEST_F(MacosAgent, UpdateButtonStartsCopyOfUpdaterAndWindowStays) {
  ProductServerDouble server;
  server.putVersion("9.0.0");
  setServers(server.origin());
  putUpdater();
  launch();
  choose(supportLine);
  ASSERT_TRUE(shows(windowNamed("Support Tovalin")));
  clickIn("Support Tovalin", 70, 62);
  EXPECT_TRUE(waitForText("run: open /tmp/tovalinupdate.app"));
  EXPECT_EQ(contentsOf("/tmp/tovalinupdate.app/program"), "updater");
  EXPECT_TRUE(waitForBeacon("?category=clickaction&clickaction=updatebtn"));
  const auto window = test_support::waitForWindow(display_.name(), windowNamed("Support Tovalin"));
  ASSERT_TRUE(window);
  // The modal run has ended: the menu works while the window is open.
  choose(switchLine);
  EXPECT_TRUE(waitForText("pipe: -u"));
  test_support::requestClose(display_.name(), window->id);
  EXPECT_TRUE(
      waitForText("log 6: -[nimbatrayAppDelegate supportWindowWillClose:]upportWindow will be close."));
}

TEST_F(MacosAgent, CollectionAsksRunsCommandsAndReports) {
  for (const char* command : {"mkdir", "cp", "zip"}) record(command);
  launch();
  choose(supportLine);
  ASSERT_TRUE(shows(windowNamed("Support Tovalin")));
  clickIn("Support Tovalin", 350, 62);
  ASSERT_TRUE(shows(windowNamed("sheet")));
  saveScreen("macos-sheet");
  timeline_.clear();
  clickIn("sheet", 338, 26);
  ASSERT_TRUE(waitForText("run: zip "));
  const std::vector<std::string> commands = texts();
  const std::string target = commands[0].substr(std::string("run: mkdir ").size());
  EXPECT_TRUE(std::regex_match(
      target, std::regex("/tmp/tovalinlog_[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}-[0-9]{2}-[0-9]{2}")));
  EXPECT_EQ(commands, (std::vector<std::string>{
                          "run: mkdir " + target, "run: cp /private/var/log/Tovalin*.log " + target + "/",
                          "run: cp /private/var/log/system.log " + target + "/",
                          "run: cp /tmp/home/Library/Logs/DiagnosticReports/Tovalin*.crash " + target + "/",
                          "run: cp /Library/Logs/DiagnosticReports/Tovalin*.crash " + target + "/",
                          "run: zip /tmp/home/Desktop/" + target.substr(5) + ".zip " + target + "/*.*"}));
  ASSERT_TRUE(shows(windowNamed("sheet")));
  saveScreen("macos-collected");
  clickIn("sheet", 226, 26);
  EXPECT_TRUE(waitForText(std::string("run: open ") + kClosedServer + "/contact/tovalin/"));
}

TEST_F(MacosAgent, CancelClosesSheetAndCollectsNothing) {
  for (const char* command : {"mkdir", "cp", "zip"}) record(command);
  launch();
  choose(supportLine);
  const auto window = test_support::waitForWindow(display_.name(), windowNamed("Support Tovalin"));
  ASSERT_TRUE(window);
  clickIn("Support Tovalin", 350, 62);
  ASSERT_TRUE(shows(windowNamed("sheet")));
  clickIn("sheet", 226, 26);
  ASSERT_TRUE(hides(windowNamed("sheet")));
  // A window with a sheet refuses to close.
  test_support::requestClose(display_.name(), window->id);
  ASSERT_TRUE(hides(windowNamed("Support Tovalin")));
  EXPECT_EQ(count("run: mkdir"), 0);
}

TEST_F(MacosAgent, RemovedBundleEndsAgent) {
  launch();
  timeline_.clear();
  fs::rename(bundle_, "/tmp/Applications/Moved.app");
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0});
  fs::remove_all("/tmp/Applications/Moved.app");
  EXPECT_EQ(texts(), (std::vector<std::string>{"log 6: filestreamcallback event flag : 32, 0x20", unloadRun,
                                               killRun}));
}

TEST_F(MacosAgent, ChangeInsideBundleEndsWatchAndNotAgent) {
  launch();
  timeline_.clear();
  std::ofstream(bundle_ + "/Contents/new file") << "text";
  ASSERT_TRUE(waitForText("log 6: filestreamcallback event flag : 0, 0x0"));
  fs::rename(bundle_, "/tmp/Applications/Moved.app");
  // Between the two pauses of the switch, the main thread would handle a further event.
  choose(switchLine);
  ASSERT_TRUE(waitForText("pipe: -u"));
  choose(switchLine);
  ASSERT_TRUE(waitForText("pipe: -m"));
  fs::remove_all("/tmp/Applications/Moved.app");
  EXPECT_EQ(count("log 6: filestreamcallback"), 1);
  EXPECT_EQ(count(unloadRun), 0);
  terminateAgent();
}

TEST_F(MacosAgent, DarkAppearanceIsReadAtStart) {
  test_support::ChildProcess defaults;
  ASSERT_TRUE(defaults.start({"defaults", "write", "NSGlobalDomain", "AppleInterfaceStyle", "Dark"}, {}));
  ASSERT_EQ(defaults.wait(), ExitStatus{.code = 0});
  launch();
  EXPECT_EQ(count("log 3: Dark Mode : 1"), 1);
}

TEST_F(MacosAgent, AppearanceNotificationFlipsIcon) {
  launch();
  const auto item = test_support::waitForWindow(display_.name(), windowNamed("status item"));
  ASSERT_TRUE(item);
  const test_support::ScreenArea area{item->x, item->y, item->width, item->height};
  const auto picture = [&] { return test_support::pictureOf(display_.name(), area); };
  ASSERT_TRUE(waitUntil([&] { return hasSeveralColours(picture()); }));
  const auto light = picture();
  postNotification("AppleInterfaceThemeChangedNotification");
  ASSERT_TRUE(waitUntil([&] { return picture() != light; }));
  saveScreen("macos-dark-icon");
  postNotification("AppleInterfaceThemeChangedNotification");
  EXPECT_TRUE(waitUntil([&] { return picture() == light; }));
}

TEST_F(MacosAgent, SecondStartOpensMenu) {
  launch();
  startAgain();
  EXPECT_TRUE(shows(isMenu));
}

}  // namespace

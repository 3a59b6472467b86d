#include <filesystem>
#include <fstream>
#include <functional>
#include <regex>
#include <string>
#include <vector>

#include "tests/harness/collect_messages.h"
#include "tests/harness/desktop/session_bus.h"
#include "tests/harness/desktop/x_input.h"
#include "tests/harness/processes/file_contents.h"
#include "tests/harness/processes/wait_until.h"
#include "tests/macos/macos_agent_fixture.h"

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using test_support::collectMessage;
using test_support::deviceMessage;
using test_support::ExitStatus;
using test_support::ProductServerDouble;
using test_support::waitUntil;

// The externally visible actions of an agent.
struct Outcome {
  std::vector<std::string> events;  // messages, log entries with their priorities, commands
  std::vector<std::string> beacons;
  std::vector<std::string> requests;  // method, path and body
  std::vector<std::string> records;   // of the day's file
};

// Masks permitted differences: the installation's identifier, the time of a record, and the system code.
std::string masked(const std::string& file) {
  std::string text = std::regex_replace(file, std::regex("\\{[0-9A-F-]{36}\\}"), "{identifier}");
  text =
      std::regex_replace(text, std::regex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}"), "(time)");
  return std::regex_replace(text, std::regex("\\}\x01[\x40-\x44]\x01"), "}\x01(system)\x01");
}

bool isNotice(const test_support::XWindow& window, int width) {
  return window.name == "Tovalin Notification" && window.width == width;
}
bool isAccessNotice(const test_support::XWindow& window) {
  return isNotice(window, 420);
}
bool isLoadingNotice(const test_support::XWindow& window) {
  return isNotice(window, 260);
}

bool isLinuxMenu(const test_support::XWindow& window) {
  return window.className == "Tovalin" && window.width > 100;
}

class MacosDifferential : public MacosAgentTest {
 protected:
  Outcome play(const std::string& folderOfAgent, const std::function<void()>& chooseSupport) {
    Outcome outcome;
    ProductServerDouble server;
    server.putVersion("9.0.0");
    server.put("/product/nimba/binary/tovalinnotice.xml", noticeList);
    setServers(server.origin());
    putUpdater();
    fs::remove_all(folderOfAgent);
    fs::create_directories(folderOfAgent);
    std::ofstream(folderOfAgent + "/Tovalin_2020_01_02.dat") << "records of a past day";
    timeline_.clear();
    launch();
    EXPECT_TRUE(server.waitForRequests("POST", 1));
    EXPECT_TRUE(waitUntil([&] { return !fs::exists(folderOfAgent + "/Tovalin_2020_01_02.dat"); }));
    sendRecords();
    showNotices();
    chooseSupport();
    useSupportWindow();
    EXPECT_TRUE(waitForBeacon("?category=applaunch&applaunch=version1.0.0"));
    fs::rename(bundle_, "/tmp/Applications/Moved.app");
    EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0});
    fs::remove_all("/tmp/Applications/Moved.app");
    takeOutcome(outcome, server, folderOfAgent);
    return outcome;
  }

 protected:
  // The menu opens at the second start; its last line but one is the support window's.
  void chooseSupportOfLinuxAgent() {
    startAgain();
    ASSERT_TRUE(shows(isLinuxMenu));
    for (const char* key : {"Up", "Up", "Return"}) ASSERT_TRUE(test_support::pressKey(display_.name(), key));
  }

  // A second start of the Linux agent asks the first for its menu over the session bus.
  test_support::SessionBus bus_;

 private:
  void sendRecords() {
    send(deviceMessage("phone"));
    send(collectMessage(4, "\0"s));
    send(test_support::kTransferMessage);
    send(collectMessage(0, "\x1f\0\0\0"s));
    send(collectMessage(7));
    send("-nothing");
  }

  void showNotices() {
    send("-noff");
    for (const char* command : {"-non", "-non"}) send(command);
    EXPECT_TRUE(shows(isAccessNotice));
    send("-neon");
    EXPECT_TRUE(shows(isLoadingNotice));
    send("-neoff");
    EXPECT_TRUE(hides(isLoadingNotice));
    EXPECT_TRUE(waitForText("run: osascript"));
    send("-noff");
    EXPECT_TRUE(hides(isAccessNotice));
    send("-neon");
    EXPECT_TRUE(shows(isLoadingNotice));
    send("-non");
    EXPECT_TRUE(shows(isAccessNotice));
    send("-neoff");
    EXPECT_TRUE(hides(isLoadingNotice));
    EXPECT_TRUE(waitUntil([this] { return count("run: osascript") == 2; }));
    send("-noff");
    EXPECT_TRUE(hides(isAccessNotice));
  }

  void useSupportWindow() {
    const auto window =
        test_support::waitForWindow(display_.name(), test_support::windowNamed("Support Tovalin"));
    ASSERT_TRUE(window);
    EXPECT_TRUE(waitForBeacon("?category=clickaction&clickaction=support"));
    clickIn("Support Tovalin", 210, 62);
    EXPECT_TRUE(waitForText("run: open http"));
    clickIn("Support Tovalin", 70, 62);
    EXPECT_TRUE(waitForText("run: open /tmp/tovalinupdate.app"));
    EXPECT_TRUE(waitForBeacon("?category=clickaction&clickaction=updatebtn"));
    test_support::requestClose(display_.name(), window->id);
    EXPECT_TRUE(
        waitForText("log 6: -[nimbatrayAppDelegate supportWindowWillClose:]upportWindow will be close."));
  }

  void takeOutcome(Outcome& outcome, const ProductServerDouble& server, const std::string& folderOfAgent) {
    outcome.events = texts();
    for (std::string& event : outcome.events)
      event = std::regex_replace(event, std::regex("127\\.0\\.0\\.1:[0-9]+"), "(server)");
    outcome.beacons = beacons();
    for (const auto& request : server.requests())
      outcome.requests.push_back(request.method + " " + request.target + " " + request.body);
    for (const auto& entry : fs::directory_iterator(folderOfAgent)) {
      if (entry.path().extension() == ".dat")
        outcome.records.push_back(masked(test_support::contentsOf(entry.path())));
    }
  }
};

TEST_F(MacosDifferential, ActionsEqualThoseOfLinuxAgent) {
  const Outcome macos = play(folder, [this] { choose(supportLine); });
  ASSERT_FALSE(HasFailure());
  installLinuxAgent();
  ASSERT_TRUE(bus_.start());
  environment_["DBUS_SESSION_BUS_ADDRESS"] = bus_.address();
  const Outcome onLinux = play(linuxFolder, [this] { chooseSupportOfLinuxAgent(); });
  EXPECT_EQ(macos.events, onLinux.events);
  EXPECT_EQ(macos.beacons, onLinux.beacons);
  EXPECT_EQ(macos.requests, onLinux.requests);
  EXPECT_EQ(macos.records, onLinux.records);
  EXPECT_EQ(onLinux.records.size(), 1U);
  EXPECT_GT(onLinux.events.size(), 25U);
}

}  // namespace

#include "tests/macos/macos_agent_fixture.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/harness/desktop/x_input.h"
#include "tests/harness/processes/file_contents.h"
#include "tests/harness/processes/file_descriptor.h"
#include "tests/harness/processes/wait_until.h"

namespace fs = std::filesystem;
using test_support::ChildOptions;
using test_support::ChildProcess;
using test_support::ExitStatus;
using test_support::Redirection;
using test_support::TimelineEvent;
using test_support::waitForWindow;
using test_support::waitUntil;

namespace {

constexpr const char* beaconRun = "run: beacon ";
constexpr const char* outsideCommands = "/tmp/outside commands";
constexpr const char* pipePath = "/tmp/KMNOTIPIPE";

int run(const std::vector<std::string>& command) {
  ChildProcess child;
  if (!child.start(command, {})) return -1;
  return child.wait().value_or(ExitStatus{}).code.value_or(-1);
}

// GNUstep keeps its files in the home directory of the password database and ignores HOME.
void moveHome() {
  std::ifstream own("/etc/passwd");
  std::ofstream moved("/tmp/passwd");
  for (std::string line; std::getline(own, line);) {
    if (line.starts_with("root:")) line = "root:x:0:0:root:/tmp/home:/bin/bash";
    moved << line << '\n';
  }
  moved.close();
  ASSERT_EQ(run({"mount", "--bind", "/tmp/passwd", "/etc/passwd"}), 0);
}

}  // namespace

std::vector<std::string> actionsAmong(const std::vector<TimelineEvent>& events) {
  std::vector<std::string> actions;
  for (const TimelineEvent& event : events) {
    if (!event.text.starts_with(beaconRun)) actions.push_back(event.text);
  }
  return actions;
}

std::vector<std::string> beaconsAmong(const std::vector<TimelineEvent>& events) {
  std::vector<std::string> queries;
  for (const TimelineEvent& event : events) {
    if (event.text.starts_with(beaconRun)) queries.push_back(event.text.substr(event.text.find('?')));
  }
  return queries;
}

bool hasSeveralColours(const std::optional<test_support::XPicture>& picture) {
  if (!picture) return false;
  for (int y = 0; y < picture->height(); ++y) {
    for (int x = 0; x < picture->width(); ++x)
      if (picture->at(x, y) != picture->at(0, 0)) return true;
  }
  return false;
}

bool isMenu(const test_support::XWindow& window) {
  return window.name == "menu";
}

void MacosAgentTest::SetUp() {
  if (!fs::exists("/tmp/passwd")) moveHome();
  fs::remove_all("/tmp/home/Library");
  fs::remove_all("/tmp/home/GNUstep");
  fs::remove(pipePath);
  ASSERT_TRUE(timeline_.valid());
  ASSERT_TRUE(display_.start());
  fs::remove_all(outsideCommands);
  fs::create_directories(outsideCommands);
  for (const char* command : {"killall", "beacon", "launchctl", "open", "osascript"}) record(command);
  environment_ = {{"DISPLAY", display_.name()},
                  {"PATH", std::string(outsideCommands) + ":" + std::getenv("PATH")}};
  installMacosAgent();
  // No application icon on the screen; macOS shows none for agents either.
  ASSERT_EQ(run({"defaults", "write", "NSGlobalDomain", "GSSuppressAppIcon", "YES"}), 0);
}

void MacosAgentTest::TearDown() {
  agent_.kill();
}

void MacosAgentTest::record(const std::string& command) {
  fs::copy_file(TOVALIN_RECORDER, std::string(outsideCommands) + "/" + command);
}

void MacosAgentTest::stopRecording(const std::string& command) {
  fs::remove(std::string(outsideCommands) + "/" + command);
}

void MacosAgentTest::install(const std::string& built) {
  fs::remove_all(bundle_);
  fs::create_directories(fs::path(bundle_).parent_path());
  fs::copy(built, bundle_, fs::copy_options::recursive);
}

void MacosAgentTest::installMacosAgent() {
  install(TOVALIN_MACOS_BUNDLE);
  setServers(kClosedServer);
}

void MacosAgentTest::installLinuxAgent() {
  const char* root = std::getenv("TOVALIN_BUNDLE_ROOT");
  install(std::string(root == nullptr ? "" : root) + "/Tovalin.app");
  fs::copy_file(std::string(TOVALIN_MACOS_BUNDLE) + "/Contents/TovalinPorperty.plist",
                bundle_ + "/Contents/TovalinPorperty.plist", fs::copy_options::overwrite_existing);
  const std::string helpers = contents() + "/Helpers/";
  for (const char* helper : {"collectlogs", "launchctl", "open", "osascript"})
    fs::copy_file(TOVALIN_RECORDER, helpers + helper, fs::copy_options::overwrite_existing);
  fs::copy_file(TOVALIN_WEB_VIEW_DOUBLE, helpers + "TovalinWebView", fs::copy_options::overwrite_existing);
  setServers(kClosedServer);
}

void MacosAgentTest::setServers(const std::string& product, const std::string& testUpload) {
  const std::string path = contents() + "/Info.plist";
  std::string list = test_support::contentsOf(path);
  if (const auto earlier = list.find("<key>TovalinProductServer"); earlier != std::string::npos)
    list.erase(earlier, list.rfind("</dict>") - earlier);
  list.insert(list.rfind("</dict>"), "<key>TovalinProductServer</key><string>" + product +
                                         "</string><key>TovalinTestUploadServer</key><string>" + testUpload +
                                         "</string>");
  std::ofstream(path) << list;
}

void MacosAgentTest::writeProperties(bool autorun, bool active) {
  const auto value = [](bool on) { return on ? "<true/>" : "<false/>"; };
  std::ofstream(bundle_ + "/Contents/TovalinPorperty.plist")
      << "<plist version=\"1.0\"><dict><key>Autorun</key>" << value(autorun) << "<key>Active</key>"
      << value(active) << "</dict></plist>";
}

void MacosAgentTest::launch() {
  ChildOptions options;
  options.environment = environment_;
  options.error = Redirection::pipe();
  ASSERT_TRUE(agent_.start({contents() + "/MacOS/TovalinTray"}, options));
  ASSERT_TRUE(waitForText("pipe: -ton")) << agent_.takeErrorOutput();
  ASSERT_TRUE(waitForText("log 6: read_pipe read pipe message : ")) << agent_.takeErrorOutput();
}

void MacosAgentTest::startAgain() {
  ChildProcess second;
  ChildOptions options;
  options.environment = environment_;
  ASSERT_TRUE(second.start({contents() + "/MacOS/TovalinTray"}, options));
  ASSERT_EQ(second.wait(), ExitStatus{.code = 0});
}

ExitStatus MacosAgentTest::endOfAgent() {
  const auto status = agent_.wait();
  EXPECT_TRUE(status.has_value()) << "the agent still runs: " << agent_.takeErrorOutput();
  return status.value_or(ExitStatus{});
}

void MacosAgentTest::terminateAgent() {
  agent_.terminate();
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0});
}

void MacosAgentTest::send(const std::string& message) {
  const std::string entry = "log 6: read_pipe read pipe message : " + message.substr(0, message.find('\0'));
  const int before = count(entry);
  const test_support::FileDescriptor pipe(::open(pipePath, O_WRONLY | O_NONBLOCK | O_CLOEXEC));
  ASSERT_EQ(::write(pipe.get(), message.data(), message.size()), static_cast<ssize_t>(message.size()));
  ASSERT_TRUE(waitUntil([&] { return count(entry) > before; }));
}

void MacosAgentTest::choose(int line) {
  const auto item = waitForWindow(display_.name(), test_support::windowNamed("status item"));
  ASSERT_TRUE(item) << "no status item: " << agent_.takeErrorOutput();
  ASSERT_TRUE(
      test_support::clickMouse(display_.name(), item->x + item->width / 2, item->y + item->height / 2));
  const auto menu = waitForWindow(display_.name(), isMenu);
  ASSERT_TRUE(menu);
  constexpr int lineHeight = 20;
  const int y = menu->y + line * lineHeight + lineHeight / 2;
  // The first click on a window of an inactive program may only activate it.
  for (int tries = 0; tries < 5; ++tries) {
    ASSERT_TRUE(test_support::clickMouse(display_.name(), menu->x + menu->width / 2, y));
    if (test_support::waitForNoWindow(display_.name(), isMenu, std::chrono::seconds(2))) return;
  }
  FAIL() << "the menu did not close";
}

void MacosAgentTest::clickIn(const std::string& window, int x, int fromBottom) {
  const auto found = waitForWindow(display_.name(), test_support::windowNamed(window));
  ASSERT_TRUE(found);
  ASSERT_TRUE(test_support::clickMouse(display_.name(), found->x + x, found->y + found->height - fromBottom));
}

void MacosAgentTest::putUpdater() const {
  const std::string updater = bundle_ + "/Contents/Resources/tovalinupdate.app";
  fs::create_directories(updater);
  std::ofstream(updater + "/program") << "updater";
}

bool MacosAgentTest::shows(const test_support::WindowPredicate& fits) {
  return waitForWindow(display_.name(), fits).has_value();
}

bool MacosAgentTest::hides(const test_support::WindowPredicate& fits) {
  return test_support::waitForNoWindow(display_.name(), fits);
}

void MacosAgentTest::postNotification(const std::string& name) {
  ASSERT_EQ(run({TOVALIN_POST_NOTIFICATION, name}), 0);
}

void MacosAgentTest::saveScreen(const std::string& name) const {
  const char* pictures = std::getenv("TOVALIN_PICTURES");
  if (pictures == nullptr) return;
  EXPECT_TRUE(display_.screenshot(std::string(pictures) + "/" + name + ".png"));
}

std::vector<std::string> MacosAgentTest::texts() {
  return actionsAmong(timeline_.events());
}

bool MacosAgentTest::waitForBeacon(const std::string& query) {
  return timeline_
      .waitFor([&](const TimelineEvent& event) {
        return event.text.starts_with(beaconRun) && event.text.ends_with(query);
      })
      .has_value();
}

int MacosAgentTest::count(const std::string& beginning) {
  return static_cast<int>(
      std::ranges::count_if(texts(), [&](const std::string& text) { return text.starts_with(beginning); }));
}

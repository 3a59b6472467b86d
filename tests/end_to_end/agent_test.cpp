#include "tests/end_to_end/agent_test.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>
#include <utility>

#include "tests/harness/processes/file_contents.h"

namespace fs = std::filesystem;
using test_support::ChildOptions;
using test_support::ChildProcess;
using test_support::ExitStatus;
using test_support::Redirection;

namespace {

constexpr const char* beaconRun = "run: beacon ";
constexpr const char* outsideCommands = "/tmp/outside commands";

void placeRecorder(const std::string& place) {
  fs::copy_file(TOVALIN_RECORDER, place, fs::copy_options::overwrite_existing);
}

std::string builtBundle() {
  const char* root = std::getenv("TOVALIN_BUNDLE_ROOT");
  return std::string(root == nullptr ? "" : root) + "/Tovalin.app";
}

std::string builtAgentContents() {
  return builtBundle() + "/Contents/Resources/TovalinTray.app/Contents";
}

bool isRunning(const std::string& program) {
  for (const auto& process : fs::directory_iterator("/proc")) {
    std::string command;
    std::getline(std::ifstream(process.path() / "comm"), command);
    if (command == program) return true;
  }
  return false;
}

// All of its threads, each of which stops for itself.
bool isStopped(pid_t process) {
  const fs::directory_iterator threads("/proc/" + std::to_string(process) + "/task");
  return std::all_of(begin(threads), end(threads), [](const auto& thread) {
    return test_support::contentsOf(thread.path() / "status").find("State:\tT") != std::string::npos;
  });
}

// The header ends with the first of the versions that stand behind the bundle's.
std::string withoutHeader(const std::string& file) {
  const std::string end =
      "\x07"
      "1.0.0.0";
  const std::size_t place = file.find(end);
  return place == std::string::npos ? file : file.substr(place + end.size());
}

}  // namespace

std::vector<fs::path> usageFiles() {
  std::vector<fs::path> files;
  std::error_code none;
  for (const auto& entry : fs::directory_iterator("/tmp/home/.local/share/Tovalin", none)) {
    if (entry.path().extension() == ".dat") files.push_back(entry.path());
  }
  std::ranges::sort(files);
  return files;
}

void AgentTest::SetUp() {
  fs::remove_all("/tmp/home/.local");
  ASSERT_TRUE(timeline_.valid());
  ASSERT_TRUE(bus_.start());
  ASSERT_TRUE(display_.start());
  fs::create_directories(outsideCommands);
  for (const char* command : {"/killall", "/beacon"}) placeRecorder(outsideCommands + std::string(command));
  environment_ = {{"DISPLAY", display_.name()},
                  {"DBUS_SESSION_BUS_ADDRESS", bus_.address()},
                  {"PATH", std::string(outsideCommands) + ":" + std::getenv("PATH")}};
}

void AgentTest::TearDown() {
  agent_.kill();
  EXPECT_TRUE(test_support::waitUntil([] { return !isRunning("TovalinWebView"); }));
}

void AgentTest::install(const std::string& path, const std::string& program) {
  bundle_ = path;
  fs::remove_all(path);
  fs::create_directories(fs::path(path).parent_path());
  fs::copy(builtBundle(), path, fs::copy_options::recursive);
  if (!program.empty()) fs::copy_file(program, agentProgram(), fs::copy_options::overwrite_existing);
  for (const char* helper : {"launchctl", "open", "osascript"})
    placeRecorder(agentContents() + "/Helpers/" + helper);
  fs::copy_file(TOVALIN_WEB_VIEW_DOUBLE, agentContents() + "/Helpers/TovalinWebView",
                fs::copy_options::overwrite_existing);
  setServers(kNobody);
}

void AgentTest::installWebView() {
  fs::copy_file(builtAgentContents() + "/Helpers/TovalinWebView", agentContents() + "/Helpers/TovalinWebView",
                fs::copy_options::overwrite_existing);
}

void AgentTest::setServers(const std::string& product, const std::string& testUpload) {
  const std::string path = agentContents() + "/Info.plist";
  std::string list = test_support::contentsOf(builtAgentContents() + "/Info.plist");
  list.insert(list.rfind("</dict>"), "<key>TovalinProductServer</key><string>" + product +
                                         "</string><key>TovalinTestUploadServer</key><string>" + testUpload +
                                         "</string>");
  std::ofstream(path) << list;
}

void AgentTest::writeProperties(const Properties& properties) {
  std::ofstream file(bundle_ + "/Contents/TovalinPorperty.plist");
  const auto entry = [&](const char* key, std::optional<bool> value) {
    if (value) file << "<key>" << key << "</key>" << (*value ? "<true/>" : "<false/>");
  };
  file << "<plist version=\"1.0\"><dict>";
  entry("Autorun", properties.autorun);
  entry("Active", properties.active);
  file << "</dict></plist>";
}

void AgentTest::startAgent(const std::vector<std::string>& arguments) {
  if (bundle_.empty()) install("/tmp/Applications/Tovalin.app");
  std::vector<std::string> command{agentProgram()};
  command.insert(command.end(), arguments.begin(), arguments.end());
  ChildOptions options;
  options.environment = environment_;
  options.error = Redirection::pipe();
  ASSERT_TRUE(agent_.start(command, options));
}

void AgentTest::launchAgent() {
  startAgent();
  ASSERT_TRUE(waitForText("pipe: -ton")) << agent_.takeErrorOutput();
}

void AgentTest::launchAgentInPanel() {
  ASSERT_TRUE(host_.start(bus_));
  launchAgent();
  ASSERT_TRUE(host_.waitForEvent("registered")) << agent_.takeErrorOutput();
}

ExitStatus AgentTest::endOfAgent() {
  const auto status = agent_.wait();
  EXPECT_TRUE(status.has_value()) << "the agent is still there";
  return status.value_or(ExitStatus{});
}

std::chrono::milliseconds AgentTest::timeToEnd(const std::function<void()>& prepare,
                                               const std::function<void()>& removal) {
  const fs::path kept = "/tmp/Kept.app";
  fs::remove_all(kept);
  fs::copy(bundle_, kept, fs::copy_options::recursive);
  auto shortest = std::chrono::milliseconds::max();
  for (int i = 0; i < 5 && shortest >= longestEnd; ++i) {
    fs::remove_all(bundle_);
    fs::create_directories(fs::path(bundle_).parent_path());
    fs::copy(kept, bundle_, fs::copy_options::recursive);
    prepare();
    if (HasFatalFailure()) return shortest;
    const auto start = std::chrono::steady_clock::now();
    removal();
    EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0}) << agent_.takeErrorOutput();
    shortest = std::min(shortest, std::chrono::duration_cast<std::chrono::milliseconds>(
                                      std::chrono::steady_clock::now() - start));
  }
  fs::create_directories(fs::path(bundle_).parent_path());
  fs::copy(kept, bundle_, fs::copy_options::recursive);
  return shortest;
}

void AgentTest::terminateAgent() {
  agent_.terminate();
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0}) << agent_.takeErrorOutput();
}

void AgentTest::whileAgentStandsStill(const std::function<void()>& act) {
  agent_.signal(SIGSTOP);
  EXPECT_TRUE(test_support::waitUntil([this] { return isStopped(agent_.pid()); }));
  act();
  agent_.signal(SIGCONT);
}

void AgentTest::removeAtOnce(const std::string& folder) {
  whileAgentStandsStill([&] { fs::remove_all(folder); });
}

std::vector<std::string> AgentTest::texts() {
  std::vector<std::string> all = timeline_.texts();
  std::erase_if(all, [](const std::string& text) { return text.starts_with(beaconRun); });
  return all;
}

std::vector<std::string> AgentTest::beacons() {
  std::vector<std::string> queries;
  for (const std::string& text : timeline_.texts()) {
    if (text.starts_with(beaconRun)) queries.push_back(text.substr(text.find('?')));
  }
  return queries;
}

bool AgentTest::waitForBeacon(const std::string& query) {
  return timeline_
      .waitFor([&](const test_support::TimelineEvent& event) {
        return event.text.starts_with(beaconRun) && event.text.ends_with(query);
      })
      .has_value();
}

int AgentTest::count(const std::string& beginning) {
  return static_cast<int>(
      std::ranges::count_if(texts(), [&](const std::string& text) { return text.starts_with(beginning); }));
}

std::size_t AgentTest::position(const std::string& beginning) {
  const auto all = texts();
  const auto found =
      std::ranges::find_if(all, [&](const std::string& text) { return text.starts_with(beginning); });
  EXPECT_NE(found, all.end()) << beginning << " is not on the time line: " << testing::PrintToString(all);
  return static_cast<std::size_t>(found - all.begin());
}

std::string AgentTest::recordedUsage() {
  std::string all;
  for (const fs::path& file : usageFiles()) {
    const std::string contents = test_support::contentsOf(file);
    all += all.empty() ? contents : withoutHeader(contents);
  }
  return all;
}

int AgentTest::recordsLike(const std::string& bytes) {
  const std::string all = recordedUsage();
  int found = 0;
  for (std::size_t at = all.find(bytes); at != std::string::npos; at = all.find(bytes, at + 1)) ++found;
  return found;
}

long AgentTest::ownMemoryInKilobytes(pid_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/smaps_rollup");
  long kilobytes = 0;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("Pss_Anon:") || line.starts_with("Pss_Shmem:"))
      kilobytes += std::stol(line.substr(line.find(':') + 1));
  }
  EXPECT_GT(kilobytes, 0) << "the memory of " << process << " can't be read";
  return kilobytes;
}

// The main thread may still be behind what was asked of it, with windows up; then the size moves.
long AgentTest::settledMemory() const {
  long before = -1, now = ownMemoryInKilobytes(agent_.pid());
  for (int i = 0; i < 100 && now != before; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    before = std::exchange(now, ownMemoryInKilobytes(agent_.pid()));
  }
  return now;
}

long AgentTest::memoryWithAllPictures(const std::function<void()>& showAll) const {
  long most = 0;
  for (int i = 0; i < 3; ++i) {
    showAll();
    most = std::max(most, settledMemory());
  }
  return most;
}

long AgentTest::descriptors() const {
  const std::filesystem::directory_iterator open("/proc/" + std::to_string(agent_.pid()) + "/fd");
  return std::distance(begin(open), end(open));
}

std::string AgentTest::runOnDisplay(const std::vector<std::string>& command) {
  ChildProcess tool;
  ChildOptions options;
  options.environment = environment_;
  EXPECT_TRUE(tool.start(command, options));
  EXPECT_EQ(tool.wait(), ExitStatus{.code = 0}) << command[0];
  return tool.takeOutput();
}

#include "tests/end_to_end/running_agent.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>
#include <utility>

#include "tests/harness/processes/file_contents.h"
#include "tests/harness/processes/wait_until.h"

namespace fs = std::filesystem;
using test_support::ChildOptions;
using test_support::ExitStatus;
using test_support::Redirection;

namespace {

constexpr const char* beaconRun = "run: beacon ";

bool isRunning(const std::string& program) {
  for (const auto& process : fs::directory_iterator("/proc")) {
    std::string command;
    std::getline(std::ifstream(process.path() / "comm"), command);
    if (command == program) return true;
  }
  return false;
}

// Returns whether all threads are stopped; SIGSTOP stops each of them separately.
bool isStopped(pid_t process) {
  const fs::directory_iterator threads("/proc/" + std::to_string(process) + "/task");
  return std::all_of(begin(threads), end(threads), [](const auto& thread) {
    return test_support::contentsOf(thread.path() / "status").find("State:\tT") != std::string::npos;
  });
}

}  // namespace

void RunningAgent::setUpAgent() {
  fs::remove_all("/tmp/home/.local");
  ASSERT_TRUE(timeline_.valid());
  desktop_.startDesktop();
}

void RunningAgent::tearDownAgent() {
  agent_.kill();
  EXPECT_TRUE(test_support::waitUntil([] { return !isRunning("TovalinWebView"); }));
}

void RunningAgent::startAgent(const std::vector<std::string>& arguments) {
  if (installed_.bundle_.empty()) installed_.install("/tmp/Applications/Tovalin.app");
  std::vector<std::string> command{installed_.agentProgram()};
  command.insert(command.end(), arguments.begin(), arguments.end());
  ChildOptions options;
  options.environment = desktop_.environment_;
  options.error = Redirection::pipe();
  ASSERT_TRUE(agent_.start(command, options));
}

void RunningAgent::launchAgent() {
  startAgent();
  ASSERT_TRUE(waitForText("pipe: -ton")) << agent_.takeErrorOutput();
}

void RunningAgent::launchAgentInPanel() {
  ASSERT_TRUE(desktop_.host_.start(desktop_.bus_));
  launchAgent();
  ASSERT_TRUE(desktop_.host_.waitForEvent("registered")) << agent_.takeErrorOutput();
}

ExitStatus RunningAgent::endOfAgent() {
  const auto status = agent_.wait();
  EXPECT_TRUE(status.has_value()) << "the agent still runs";
  return status.value_or(ExitStatus{});
}

std::chrono::milliseconds RunningAgent::timeToEnd(const std::function<void()>& prepare,
                                                  const std::function<void()>& removal) {
  const fs::path copy = "/tmp/Copy.app";
  fs::remove_all(copy);
  fs::copy(installed_.bundle_, copy, fs::copy_options::recursive);
  auto shortest = std::chrono::milliseconds::max();
  for (int i = 0; i < 5 && shortest >= maxTimeToEnd; ++i) {
    fs::remove_all(installed_.bundle_);
    fs::create_directories(fs::path(installed_.bundle_).parent_path());
    fs::copy(copy, installed_.bundle_, fs::copy_options::recursive);
    prepare();
    if (testing::Test::HasFatalFailure()) return shortest;
    const auto start = std::chrono::steady_clock::now();
    removal();
    EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0}) << agent_.takeErrorOutput();
    shortest = std::min(shortest, std::chrono::duration_cast<std::chrono::milliseconds>(
                                      std::chrono::steady_clock::now() - start));
  }
  fs::create_directories(fs::path(installed_.bundle_).parent_path());
  fs::copy(copy, installed_.bundle_, fs::copy_options::recursive);
  return shortest;
}

void RunningAgent::terminateAgent() {
  agent_.terminate();
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0}) << agent_.takeErrorOutput();
}

void RunningAgent::whileAgentIsStopped(const std::function<void()>& act) {
  agent_.signal(SIGSTOP);
  EXPECT_TRUE(test_support::waitUntil([this] { return isStopped(agent_.pid()); }));
  act();
  agent_.signal(SIGCONT);
}

void RunningAgent::removeAtOnce(const std::string& folder) {
  whileAgentIsStopped([&] { fs::remove_all(folder); });
}

std::vector<std::string> RunningAgent::texts() {
  std::vector<std::string> all = timeline_.texts();
  std::erase_if(all, [](const std::string& text) { return text.starts_with(beaconRun); });
  return all;
}

std::vector<std::string> RunningAgent::beacons() {
  std::vector<std::string> queries;
  for (const std::string& text : timeline_.texts()) {
    if (text.starts_with(beaconRun)) queries.push_back(text.substr(text.find('?')));
  }
  return queries;
}

bool RunningAgent::waitForBeacon(const std::string& query) {
  return timeline_
      .waitFor([&](const test_support::TimelineEvent& event) {
        return event.text.starts_with(beaconRun) && event.text.ends_with(query);
      })
      .has_value();
}

int RunningAgent::count(const std::string& beginning) {
  return static_cast<int>(
      std::ranges::count_if(texts(), [&](const std::string& text) { return text.starts_with(beginning); }));
}

std::size_t RunningAgent::position(const std::string& beginning) {
  const auto all = texts();
  const auto found =
      std::ranges::find_if(all, [&](const std::string& text) { return text.starts_with(beginning); });
  EXPECT_NE(found, all.end()) << beginning << " is not on the timeline: " << testing::PrintToString(all);
  return static_cast<std::size_t>(found - all.begin());
}

long RunningAgent::ownMemoryInKilobytes(pid_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/smaps_rollup");
  long kilobytes = 0;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("Pss_Anon:") || line.starts_with("Pss_Shmem:"))
      kilobytes += std::stol(line.substr(line.find(':') + 1));
  }
  EXPECT_GT(kilobytes, 0) << "memory of process " << process << " cannot be read";
  return kilobytes;
}

// The main thread may still be processing requests with windows shown, which changes the size.
long RunningAgent::settledMemory() const {
  long before = -1, now = ownMemoryInKilobytes(agent_.pid());
  for (int i = 0; i < 100 && now != before; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    before = std::exchange(now, ownMemoryInKilobytes(agent_.pid()));
  }
  return now;
}

long RunningAgent::memoryWithAllPictures(const std::function<void()>& showAll) const {
  long max = 0;
  for (int i = 0; i < 3; ++i) {
    showAll();
    max = std::max(max, settledMemory());
  }
  return max;
}

long RunningAgent::descriptors() const {
  const std::filesystem::directory_iterator open("/proc/" + std::to_string(agent_.pid()) + "/fd");
  return std::distance(begin(open), end(open));
}

std::string RunningAgent::console() {
  return console_ += agent_.takeErrorOutput();
}

int RunningAgent::linesInConsole(const std::string& line) {
  const std::string text = "\n" + console();
  int found = 0;
  for (std::size_t at = text.find(line); at != std::string::npos; at = text.find(line, at + 1)) ++found;
  return found;
}

std::vector<std::string> RunningAgent::runs() {
  std::vector<std::string> all = texts();
  std::erase_if(all, [](const std::string& text) { return !text.starts_with("run: "); });
  return all;
}

int RunningAgent::beaconsOf(const std::string& value) {
  return static_cast<int>(std::ranges::count(beacons(), "?category=clickaction&clickaction=" + value));
}

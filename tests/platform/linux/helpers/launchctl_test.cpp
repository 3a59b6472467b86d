#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "tests/harness/processes/file_contents.h"
#include "tests/platform/linux/helpers/helper_run.h"

namespace helper_test {
namespace {

using namespace std::chrono_literals;
using test_support::contentsOf;

constexpr char kAgent[] = "/Library/LaunchAgents/com.example.the-agent.plist";

class LaunchctlTest : public testing::Test {
 protected:
  // Like the agent: PATH begins with the folder of the helpers.
  [[nodiscard]] Ended unload(const std::string& originalPath) const {
    const std::string path = folder_ + "/private:" + originalPath;
    return run(
        {helper("launchctl"), "unload", "-F", kAgent},
        {.environment = {{"PATH", path}, {"TOVALIN_ORIGINAL_PATH", originalPath}, {"REPORT", report_}}});
  }

  // launchctl kills systemctl after a second, which may be too short on a busy machine: up to five attempts.
  void unloadUntil(const std::function<bool()>& hasReported) const {
    for (int i = 0; i < 5 && !hasReported(); ++i) {
      const Ended ended = unload(userPath_);
      EXPECT_EQ(0, ended.code);
      EXPECT_EQ("", ended.output + ended.error);
    }
  }
  // Returns the report of the systemctl that the call starts.
  [[nodiscard]] std::vector<std::string> reportOfUnload() const {
    unloadUntil([&] { return std::filesystem::exists(report_); });
    return awaitReport(report_);
  }

  const std::string folder_ = newFolder();
  const std::string report_ = folder_ + "/report";
  const std::string userPath_ = folder_ + "/bin:/usr/bin:/bin";
};

TEST_F(LaunchctlTest, SignalsOnlyMainProcessOfUnit) {
  placeReporter(folder_ + "/bin/systemctl");
  EXPECT_EQ((std::vector<std::string>{"systemctl", "--user", "kill", "--kill-whom=main", "-s", "TERM",
                                      "app-com.example.the\\x2dagent@autostart.service"}),
            fieldsAfter(reportOfUnload(), "argv="));
}

TEST_F(LaunchctlTest, RunsSystemctlOfUserWithUsersPath) {
  placeReporter(folder_ + "/bin/systemctl");
  writeProgram(folder_ + "/private/systemctl", "exit 0");
  const auto report = reportOfUnload();
  EXPECT_EQ(std::vector<std::string>{userPath_}, fieldsAfter(report, "PATH="));
  EXPECT_EQ(std::vector<std::string>{" is unset"}, fieldsAfter(report, "TOVALIN_ORIGINAL_PATH"));
}

TEST_F(LaunchctlTest, FailedSystemctlIsIgnored) {
  writeProgram(folder_ + "/bin/systemctl", "echo to output; echo to error >&2; exit 5");
  const Ended ended = unload(userPath_);
  EXPECT_EQ(0, ended.code);
  EXPECT_EQ("", ended.output);
  EXPECT_EQ("", ended.error);
}

TEST_F(LaunchctlTest, MissingSystemctlIsIgnored) {
  const Ended ended = unload(folder_ + "/nothing here");
  EXPECT_EQ(0, ended.code);
  EXPECT_EQ("", ended.output + ended.error);
}

TEST_F(LaunchctlTest, MissingUserManagerIsIgnored) {
  const Ended ended = unload("/usr/bin:/bin");
  EXPECT_EQ(0, ended.code);
  EXPECT_EQ("", ended.output + ended.error);
}

TEST_F(LaunchctlTest, WaitsForSlowSystemctl) {
  bool waited = false;
  // One mark file per attempt: an earlier systemctl that was not waited for may still write its own.
  for (int i = 0; i < 5 && !waited; ++i) {
    const std::string mark = folder_ + "/mark" + std::to_string(i);
    writeProgram(folder_ + "/bin/systemctl", "sleep 0.3; echo done >'" + mark + "'");
    EXPECT_EQ(0, unload(userPath_).code);
    waited = std::filesystem::exists(mark);
  }
  EXPECT_TRUE(waited);
}

TEST_F(LaunchctlTest, KillsHangingSystemctlWithItsChildren) {
  const std::string file = folder_ + "/pids";
  writeProgram(folder_ + "/bin/systemctl", "trap '' TERM; sleep 1000 & echo $$ $! >'" + file + "'; wait");
  unloadUntil([&] { return contentsOf(file).ends_with('\n'); });
  std::istringstream pids(contentsOf(file));
  int ended = 0;
  for (std::string pid; pids >> pid; ++ended) {
    EXPECT_TRUE(test_support::waitUntil([&] { return !isAlive(pid); })) << pid;
  }
  EXPECT_EQ(2, ended);
}

// The agent waits for launchctl and, after the loss of its bundle, has 0.5 s left for the rest.
TEST_F(LaunchctlTest, GivesUpOnHangingSystemctlWithin1300Milliseconds) {
  writeProgram(folder_ + "/bin/systemctl", "exec sleep 1000");
  auto shortest = std::chrono::steady_clock::duration::max();
  // The shortest of five attempts discounts delays of a busy machine.
  for (int i = 0; i < 5 && shortest >= 1300ms; ++i) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(0, unload(userPath_).code);
    shortest = std::min(shortest, std::chrono::steady_clock::now() - start);
  }
  EXPECT_LT(shortest, 1300ms);
}

TEST_F(LaunchctlTest, ResetsInheritedSignalStateAndDescriptors) {
  placeReporter(folder_ + "/bin/systemctl");
  for (int i = 0; i < 5 && !std::filesystem::exists(report_); ++i) {
    const Ended ended = run({testProgram("careless_parent"), helper("launchctl"), "unload", kAgent},
                            {.environment = {{"PATH", userPath_}, {"REPORT", report_}}});
    EXPECT_EQ(0, ended.code);
  }
  const auto report = awaitReport(report_);
  EXPECT_EQ(std::vector<std::string>{}, fieldsAfter(report, "ignores "));
  EXPECT_EQ(std::vector<std::string>{}, fieldsAfter(report, "blocks "));
  EXPECT_EQ((std::vector<std::string>{"0=/dev/null", "1=/dev/null", "2=/dev/null"}),
            fieldsAfter(report, "fd"));
}

TEST_F(LaunchctlTest, OtherArgumentsAreRefusedWithMessage) {
  for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
           {}, {"load", kAgent}, {"unload"}, {"unload", "-F"}, {"unload", "-F", "a.plist"}}) {
    std::vector<std::string> argv{helper("launchctl")};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    const Ended ended = run(argv);
    EXPECT_EQ(2, ended.code);
    EXPECT_TRUE(ended.error.starts_with("launchctl: ")) << ended.error;
  }
}

TEST_F(LaunchctlTest, HelpIsPrinted) {
  const Ended ended = run({helper("launchctl"), "--help"});
  EXPECT_EQ(0, ended.code);
  EXPECT_TRUE(ended.output.starts_with("Usage: launchctl unload")) << ended.output;
  EXPECT_EQ("", ended.error);
}

}  // namespace
}  // namespace helper_test

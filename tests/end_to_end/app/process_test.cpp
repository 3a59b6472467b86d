#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/end_to_end/agent_test.h"
#include "tests/harness/desktop/x_windows.h"
#include "tests/harness/processes/file_descriptor.h"

namespace {

using test_support::ChildOptions;
using test_support::ChildProcess;
using test_support::ExitStatus;
using test_support::Redirection;
using test_support::XWindow;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

bool isMenu(const XWindow& window) {
  return window.className == "Tovalin" && window.width > 100;
}

class Process : public AgentTest {
 protected:
  void TearDown() override {
    another_.kill();
    AgentTest::TearDown();
  }
  // Starts the installed agent while another one runs.
  ExitStatus startAnother(const std::vector<std::string>& arguments = {}) {
    std::vector<std::string> command{agentProgram()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    ChildOptions options;
    options.environment = environment_;
    options.error = Redirection::pipe();
    EXPECT_TRUE(another_.start(command, options));
    return another_.wait().value_or(ExitStatus{});
  }

  // Opens the agent's lock file.
  [[nodiscard]] static test_support::FileDescriptor lockOfTheAgent() {
    const std::string folder = std::string(std::getenv("XDG_RUNTIME_DIR")) + "/TovalinTray";
    ::mkdir(folder.c_str(), 0700);
    return test_support::FileDescriptor(
        ::open((folder + "/lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  }

  ChildProcess another_;
};

TEST_F(Process, SigtermSigintAndSighupRunProperEnd) {
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
    timeline_.clear();
    launchAgent();
    ASSERT_TRUE(waitForText("log 6: read_pipe read pipe message : "));  // the last event of the launch
    agent_.signal(number);
    EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0}) << "signal " << number;
    EXPECT_EQ(texts().back(), killRun);
    EXPECT_EQ(count("pipe: -toff"), 0);
    EXPECT_EQ(count(unloadRun), 0);
  }
}

TEST_F(Process, SignalDuringPauseIsHandledAfterIt) {
  launchAgentInPanel();
  ASSERT_TRUE(host_.click("Automount Off"));
  ASSERT_TRUE(waitForText("pipe: -u"));
  terminateAgent();
  EXPECT_EQ(count(killRun), 1);
}

TEST_F(Process, SecondSignalDuringEndIsIgnored) {
  launchAgent();
  timeline_.hold("killall");
  agent_.terminate();
  ASSERT_TRUE(waitForText(killRun));
  agent_.terminate();
  timeline_.release("killall");
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0});
  EXPECT_EQ(count(killRun), 1);
}

TEST_F(Process, LossOfDisplayRunsProperEnd) {
  launchAgent();
  display_.stop();
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 1});
  EXPECT_EQ(count(killRun), 1);
}

TEST_F(Process, LossOfDisplayWithIconInPanelRunsProperEnd) {
  launchAgentInPanel();
  display_.stop();
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 1});
  EXPECT_EQ(count(killRun), 1);
  EXPECT_TRUE(host_.waitForEvent("unregistered"));
}

TEST_F(Process, AgentSurvivesLossOfBus) {
  launchAgentInPanel();
  bus_.stop();
  EXPECT_EQ(startAnother(), ExitStatus{.code = 0});
  terminateAgent();
}

TEST_F(Process, SecondStartOpensMenuOfFirstAndExitsWithZero) {
  launchAgent();
  EXPECT_EQ(startAnother(), ExitStatus{.code = 0});
  EXPECT_TRUE(test_support::waitForWindow(display_.name(), isMenu));
  EXPECT_EQ(count("pipe: -ton"), 1);
  EXPECT_TRUE(agent_.running());
}

TEST_F(Process, SecondStartDuringLaunchOpensMenuAfterIt) {
  install("/tmp/Applications/Tovalin.app");
  writeProperties({.autorun = false});
  timeline_.hold("launchctl");
  startAgent();
  ASSERT_TRUE(waitForText(unloadRun));
  EXPECT_EQ(startAnother(), ExitStatus{.code = 0});
  timeline_.release("launchctl");
  EXPECT_TRUE(test_support::waitForWindow(display_.name(), isMenu));
}

TEST_F(Process, SecondStartWithoutDisplayAndBusReportsMissingMenu) {
  launchAgent();
  environment_["DISPLAY"] = std::nullopt;
  environment_["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/tmp/no such bus";
  EXPECT_EQ(startAnother(), ExitStatus{.code = 0});
  EXPECT_THAT(another_.takeErrorOutput(), HasSubstr("already running"));
  EXPECT_TRUE(agent_.running());
}

TEST_F(Process, SecondStartWithOtherRuntimeFolderFindsFirstOnBus) {
  launchAgent();
  environment_["XDG_RUNTIME_DIR"] = std::nullopt;
  EXPECT_EQ(startAnother(), ExitStatus{.code = 0});
  EXPECT_TRUE(test_support::waitForWindow(display_.name(), isMenu));
  EXPECT_EQ(count("pipe: -ton"), 1);
}

// Another program on the bus may own the agent's name.
TEST_F(Process, BusNameOwnedByOtherProgramIsReportedAndExitsWithZero) {
  install("/tmp/Applications/Tovalin.app");
  test_support::LineProgram otherProgram;
  ASSERT_TRUE(otherProgram.start({TOVALIN_NAME_OWNER, "com.kesmoor.tovalintrayagent"},
                                 {.environment = {{"DBUS_SESSION_BUS_ADDRESS", bus_.address()}}}));
  EXPECT_EQ(startAnother(), ExitStatus{.code = 0});
  const std::string report = "not started: process " + std::to_string(otherProgram.process().pid()) +
                             " (name_owner) owns the name com.kesmoor.tovalintrayagent on the session bus";
  const std::string noAgent = "that process cannot open the menu: it is not the tray agent";
  EXPECT_THAT(another_.takeErrorOutput(),
              testing::AllOf(HasSubstr(report + "\n"), HasSubstr(noAgent + "\n")));
  EXPECT_EQ(count("log 3: " + report), 1);
  EXPECT_EQ(count("log 3: " + noAgent), 1);
  EXPECT_EQ(count("pipe: -ton"), 0);
}

// Another program of the same user holds the agent's lock as well.
TEST_F(Process, LockAndBusNameHeldByOtherProgramsReportsNameOwner) {
  install("/tmp/Applications/Tovalin.app");
  const test_support::FileDescriptor lock = lockOfTheAgent();
  ASSERT_EQ(::flock(lock.get(), LOCK_EX | LOCK_NB), 0);
  test_support::LineProgram otherProgram;
  ASSERT_TRUE(otherProgram.start({TOVALIN_NAME_OWNER, "com.kesmoor.tovalintrayagent"},
                                 {.environment = {{"DBUS_SESSION_BUS_ADDRESS", bus_.address()}}}));
  EXPECT_EQ(startAnother(), ExitStatus{.code = 0});
  EXPECT_EQ(count("log 3: not started: process " + std::to_string(otherProgram.process().pid()) +
                  " (name_owner) owns the name com.kesmoor.tovalintrayagent on the session bus"),
            1);
  EXPECT_EQ(count("log 3: that process cannot open the menu: it is not the tray agent"), 1);
}

TEST_F(Process, LockHeldByOtherProgramWithoutBusNameIsReported) {
  install("/tmp/Applications/Tovalin.app");
  const test_support::FileDescriptor lock = lockOfTheAgent();
  ASSERT_EQ(::flock(lock.get(), LOCK_EX | LOCK_NB), 0);
  EXPECT_EQ(startAnother(), ExitStatus{.code = 0});
  EXPECT_EQ(count("log 3: not started: another process holds the agent's lock and no process opens its menu"),
            1);
}

// Returns once the second start has queried the first, whose main thread is blocked in a command.
bool isQueried(ChildProcess& monitor) {
  while (const auto line = monitor.readLine())
    if (line->find("member=Activate") != std::string::npos) return true;
  return false;
}

TEST_F(Process, SecondStartDuringEndOfFirstLaunches) {
  launchAgentInPanel();
  timeline_.hold("killall");
  agent_.terminate();
  ASSERT_TRUE(waitForText(killRun));
  ChildProcess monitor;
  ASSERT_TRUE(monitor.start({"dbus-monitor", "--address", bus_.address(), "member='Activate'"}));
  ASSERT_TRUE(monitor.readLine()) << "dbus-monitor is not connected";
  ChildOptions options;
  options.environment = environment_;
  ASSERT_TRUE(another_.start({agentProgram()}, options));
  ASSERT_TRUE(isQueried(monitor));
  timeline_.clear();
  timeline_.release("killall");
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0});
  EXPECT_TRUE(waitForText("pipe: -ton"));
  EXPECT_TRUE(another_.running());
}

TEST_F(Process, StartWithNohupSurvivesSighup) {
  install("/tmp/Applications/Tovalin.app");
  ChildOptions options;
  options.environment = environment_;
  ASSERT_TRUE(agent_.start({"nohup", agentProgram()}, options));
  ASSERT_TRUE(waitForText("pipe: -ton"));
  agent_.signal(SIGHUP);
  EXPECT_FALSE(agent_.wait(std::chrono::milliseconds(300)));
  terminateAgent();
}

TEST_F(Process, HelpOntoFullDiskFails) {
  install("/tmp/Applications/Tovalin.app");
  ChildOptions options;
  options.environment = environment_;
  options.output = Redirection::file("/dev/full");
  ASSERT_TRUE(another_.start({agentProgram(), "--help"}, options));
  EXPECT_EQ(another_.wait(), ExitStatus{.code = 1});
}

TEST_F(Process, StartAfterCrashSucceeds) {
  launchAgent();
  agent_.kill();
  EXPECT_EQ(endOfAgent(), ExitStatus{.signal = SIGKILL});
  timeline_.clear();
  launchAgent();
}

TEST_F(Process, EndedAgentHoldsNoLock) {
  launchAgent();
  terminateAgent();
  timeline_.clear();
  launchAgent();
}

TEST_F(Process, HelpAndVersionNeedNoDisplay) {
  install("/tmp/Applications/Tovalin.app");
  environment_["DISPLAY"] = std::nullopt;
  EXPECT_EQ(startAnother({"--help"}), ExitStatus{.code = 0});
  EXPECT_THAT(another_.takeOutput(), StartsWith("Usage: TovalinTray [--help | --version]\n"));
  EXPECT_EQ(startAnother({"--version"}), ExitStatus{.code = 0});
  EXPECT_EQ(another_.takeOutput(), "TovalinTray 1.0.0\n");
}

TEST_F(Process, UnknownArgumentIsRejected) {
  install("/tmp/Applications/Tovalin.app");
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"--verbose"},
                                                    {"file"},
                                                    {"--help", "--version"},
                                                    {"-platform", "offscreen"},
                                                    {""}}) {
    EXPECT_EQ(startAnother(arguments), ExitStatus{.code = 2});
    EXPECT_THAT(another_.takeErrorOutput(), StartsWith("TovalinTray: unexpected argument \""));
    EXPECT_EQ(another_.takeOutput(), "");
  }
  EXPECT_TRUE(texts().empty());
}

TEST_F(Process, StandardOutputIsLineBuffered) {
  install("/tmp/Applications/Tovalin.app");
  std::filesystem::remove("/tmp/KMPIPE");
  startAgent();
  EXPECT_EQ(agent_.readLine(), "open pipe failed. errno : 2");
  EXPECT_TRUE(agent_.running());
}

TEST_F(Process, InheritedDescriptorIsNotPassedToCommands) {
  install("/tmp/Applications/Tovalin.app");
  ChildOptions options;
  options.environment = environment_;
  ASSERT_TRUE(agent_.start({"sh", "-c", "exec 9</etc/passwd; exec \"$0\"", agentProgram()}, options));
  ASSERT_TRUE(waitForText("pipe: -ton"));
  ASSERT_EQ(std::filesystem::read_symlink("/proc/" + std::to_string(agent_.pid()) + "/fd/9"), "/etc/passwd");
  std::vector<std::string> open;
  for (const auto& entry :
       std::filesystem::directory_iterator("/proc/" + std::to_string(agent_.pid()) + "/fd")) {
    if (std::stoi(entry.path().filename()) <= 2) continue;
    std::ifstream info("/proc/" + std::to_string(agent_.pid()) + "/fdinfo/" +
                       entry.path().filename().string());
    for (std::string line; std::getline(info, line);) {
      if (!line.starts_with("flags:")) continue;
      const long flags = std::stol(line.substr(6), nullptr, 8);
      if ((flags & O_CLOEXEC) == 0) open.push_back(std::filesystem::read_symlink(entry.path()));
    }
  }
  EXPECT_THAT(open, ElementsAre());
}

}  // namespace

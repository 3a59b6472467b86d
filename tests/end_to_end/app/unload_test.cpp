#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/end_to_end/notices/notice_fixture.h"

namespace {

namespace fs = std::filesystem;
using test_support::ChildOptions;
using test_support::ChildProcess;
using test_support::ExitStatus;
using testing::ElementsAre;

constexpr const char* kGenerator = "/usr/lib/systemd/user-generators/systemd-xdg-autostart-generator";
constexpr const char* kUnit = "app-com.kesmoor.tovalintrayagent@autostart.service";
constexpr const char* kSession = "/tmp/session";
constexpr const char* kRootChangeLogged = "log 6: filestreamcallback event flag : 32, 0x20";

const std::string signalRun = std::string("run: systemctl --user kill --kill-whom=main -s TERM ") + kUnit;

// The agent as the session's service manager starts it, with the real launchctl, which asks the manager for a
// signal.
class UnloadTest : public NoticeTest {
 protected:
  void SetUp() override {
    NoticeTest::SetUp();
    if (HasFatalFailure()) return;
    environment_["PATH"] = programs_ + ":" + environment_["PATH"].value_or("");
    installAnew();
  }

  // Repeats the session, at most five times, until systemctl has run to its end: launchctl kills it after one
  // second, which a busy machine may exceed.
  void runSession(const std::function<void()>& session) {
    for (int i = 0; i < 5; ++i) {
      ASSERT_NO_FATAL_FAILURE(session());
      if (fs::exists(signalled_)) return;
      agent_.kill();
      ASSERT_TRUE(agent_.wait());
      ASSERT_NO_FATAL_FAILURE(installAnew());
    }
    FAIL() << "systemctl was killed in each session";
  }

  // Writes the agent's PID to a file before exec, because the fake service manager must know the main
  // process.
  void startInSession() {
    ChildOptions options;
    options.environment = environment_;
    options.error = test_support::Redirection::pipe();
    const std::string script = "echo $$ >" + mainProcess_ + " && exec \"$0\"";
    ASSERT_TRUE(agent_.start({"sh", "-c", script, agentProgram()}, options));
  }
  void launchInSession() {
    ASSERT_TRUE(host_.process().running() || host_.start(bus_));
    host_.clearEvents();
    startInSession();
    ASSERT_TRUE(waitForText("log 6: read_pipe read pipe message : ")) << agent_.takeErrorOutput();
    ASSERT_TRUE(host_.waitForEvent("registered"));
    timeline_.clear();
  }

  void expectProperEnd(int quitRecords) {
    EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0}) << agent_.takeErrorOutput();
    EXPECT_EQ(recordsLike(startRecord), 1);
    EXPECT_EQ(recordsLike(quitRecord), quitRecords);
  }

 private:
  void installAnew() {
    for (const char* folder : {kSession, "/tmp/home/.local", "/tmp/Folder"}) fs::remove_all(folder);
    install("/tmp/Folder/Tovalin.app");
    installLaunchctl();
    placeSystemctl();
    timeline_.clear();
  }

  void installLaunchctl() {
    const char* built = std::getenv("TOVALIN_BUNDLE_ROOT");
    ASSERT_NE(built, nullptr);
    fs::copy_file(
        std::string(built) + "/Tovalin.app/Contents/Resources/TovalinTray.app/Contents/Helpers/launchctl",
        agentContents() + "/Helpers/launchctl", fs::copy_options::overwrite_existing);
  }

  void placeSystemctl() {
    fs::create_directories(programs_ + "/recorder");
    fs::copy_file(TOVALIN_RECORDER, programs_ + "/recorder/systemctl");
    std::ofstream(programs_ + "/systemctl")
        << "#!/bin/sh\n"
        << programs_ << "/recorder/systemctl \"$@\"\nkill -TERM $(cat " << mainProcess_ << ")\n"
        << "echo done >" << signalled_ << '\n';
    fs::permissions(programs_ + "/systemctl", fs::perms(0755));
  }

  const std::string programs_ = std::string(kSession) + "/programs";
  const std::string mainProcess_ = std::string(kSession) + "/main_process";
  const std::string signalled_ = std::string(kSession) + "/signalled";
};

TEST_F(UnloadTest, LossOfBundleEndsAgentOnce) {
  ASSERT_NO_FATAL_FAILURE(runSession([this] {
    launchInSession();
    fs::rename(bundle_, bundle_ + " old");
    static_cast<void>(endOfAgent());
  }));
  expectProperEnd(1);
  EXPECT_THAT(texts(), ElementsAre(kRootChangeLogged, signalRun, killRun));
}

TEST_F(UnloadTest, QuitEndsAgentOnce) {
  ASSERT_NO_FATAL_FAILURE(runSession([this] {
    launchInSession();
    ASSERT_TRUE(host_.click("Quit Tovalin"));
    static_cast<void>(endOfAgent());
  }));
  // Quit in the menu writes one quit record, the end of the agent another.
  expectProperEnd(2);
  EXPECT_THAT(texts(), ElementsAre(killRun, "pipe: -toff", signalRun, killRun));
}

TEST_F(UnloadTest, LaunchWithAutorunOffCompletesAndEndsAgentOnce) {
  ASSERT_NO_FATAL_FAILURE(runSession([this] {
    writeProperties({.autorun = false});
    startInSession();
    ASSERT_TRUE(waitForText("pipe: -ton"));
  }));
  expectProperEnd(1);
  EXPECT_LT(position(signalRun), position("pipe: -ton"));
  EXPECT_EQ(count(signalRun), 1);
  EXPECT_EQ(count("pipe: -ton"), 1);
  EXPECT_EQ(count("pipe: -toff"), 0);
  EXPECT_EQ(count(killRun), 1);
}

TEST_F(UnloadTest, SignalledUnitIsGeneratedFromPackagedEntry) {
  if (!fs::exists(kGenerator)) GTEST_SKIP() << "no " << kGenerator;
  const std::string session = kSession, units = session + "/units";
  fs::create_directories(units);
  fs::create_directories(session + "/autostart");
  for (const auto& file : fs::directory_iterator(TOVALIN_PACKAGE_RECIPE)) {
    if (file.path().extension() == ".desktop") fs::copy(file, session + "/autostart");
  }
  fs::create_symlink("/bin/true", session + "/programs/tovalin-tray");
  ChildProcess generator;
  ASSERT_TRUE(generator.start({kGenerator, units, units, units},
                              {.environment = {{"XDG_CONFIG_DIRS", session},
                                               {"XDG_CONFIG_HOME", session + "/none"},
                                               {"PATH", environment_["PATH"]}}}));
  ASSERT_EQ(generator.wait(), ExitStatus{.code = 0});
  std::vector<std::string> made;
  for (const auto& unit : fs::directory_iterator(units)) {
    if (unit.is_regular_file()) made.push_back(unit.path().filename());
  }
  EXPECT_THAT(made, ElementsAre(kUnit));
}

}  // namespace

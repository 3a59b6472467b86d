#include <gmock/gmock.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/end_to_end/notices/notice_fixture.h"

namespace {

namespace fs = std::filesystem;
using test_support::ExitStatus;
using testing::ElementsAre;

constexpr const char* changeLogged = "log 6: filestreamcallback event flag : 0, 0x0";
constexpr const char* rootChangeLogged = "log 6: filestreamcallback event flag : 32, 0x20";

// The agent whose bundle is moved, renamed, changed or removed.
class BundleWatchTest : public NoticeTest {
 protected:
  void SetUp() override {
    fs::remove_all("/tmp/Folder");
    fs::remove_all("/tmp/Other folder");
    NoticeTest::SetUp();
    if (!HasFatalFailure()) install("/tmp/Folder/Applications/Tovalin.app");
  }

  // Returns what the agent does at its end, without the logged changes of folders.
  std::vector<std::string> textsOfEnd() {
    EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0}) << agent_.takeErrorOutput();
    std::vector<std::string> all = texts();
    std::erase(all, changeLogged);
    return all;
  }

  // Changes a file in the bundle: the agent logs the change and stops the watch.
  void endWatch() {
    std::ofstream(bundle_ + "/Contents/new file") << "text";
    ASSERT_TRUE(waitForText(changeLogged));
  }

  void expectUnnoticed() {
    // More than the watch's latency of 0.5 s and the duration of the end.
    EXPECT_FALSE(agent_.wait(std::chrono::milliseconds(1500)));
    EXPECT_EQ(count(rootChangeLogged), 0);
    terminateAgent();
    EXPECT_EQ(count(unloadRun), 0);
  }
};

TEST_F(BundleWatchTest, RenamedBundleEndsAgent) {
  launch();
  fs::rename(bundle_, bundle_ + " old");
  EXPECT_THAT(textsOfEnd(), ElementsAre(rootChangeLogged, unloadRun, killRun));
}

TEST_F(BundleWatchTest, BundleMovedToAnotherFolderEndsAgent) {
  launch();
  fs::rename(bundle_, "/tmp/Folder/Tovalin.app");
  EXPECT_THAT(textsOfEnd(), ElementsAre(rootChangeLogged, unloadRun, killRun));
}

TEST_F(BundleWatchTest, RemovedBundleEndsAgent) {
  launch();
  removeAtOnce(bundle_);
  EXPECT_THAT(textsOfEnd(), ElementsAre(rootChangeLogged, unloadRun, killRun));
  EXPECT_GT(count(changeLogged), 0);
}

TEST_F(BundleWatchTest, RemovedBundleWithOpenFileEndsAgent) {
  launch();
  const std::ifstream held(bundle_ + "/Contents/Info.plist");
  const test_support::FileDescriptor folder(::open(bundle_.c_str(), O_RDONLY | O_CLOEXEC));
  removeAtOnce(bundle_);
  EXPECT_THAT(textsOfEnd(), ElementsAre(rootChangeLogged, unloadRun, killRun));
}

TEST_F(BundleWatchTest, MovedParentFolderEndsAgent) {
  for (const auto& [from, to] : {std::pair("/tmp/Folder/Applications", "/tmp/Folder/Programs"),
                                 std::pair("/tmp/Folder", "/tmp/Other folder")}) {
    install("/tmp/Folder/Applications/Tovalin.app");
    launch();
    fs::rename(from, to);
    EXPECT_THAT(textsOfEnd(), ElementsAre(rootChangeLogged, unloadRun, killRun)) << from;
  }
}

TEST_F(BundleWatchTest, RemovedParentFolderEndsAgent) {
  launch();
  removeAtOnce("/tmp/Folder");
  EXPECT_THAT(textsOfEnd(), ElementsAre(rootChangeLogged, unloadRun, killRun));
}

TEST_F(BundleWatchTest, ReplacedBundleEndsAgent) {
  launch();
  fs::copy(bundle_, "/tmp/Folder/New.app", fs::copy_options::recursive);
  whileAgentIsStopped([&] {
    fs::remove_all(bundle_);
    fs::rename("/tmp/Folder/New.app", bundle_);
  });
  EXPECT_THAT(textsOfEnd(), ElementsAre(rootChangeLogged, unloadRun, killRun));
}

TEST_F(BundleWatchTest, AgentEndsAfterHalfASecond) {
  launch();
  const auto start = std::chrono::steady_clock::now();
  fs::rename(bundle_, bundle_ + " old");
  const auto logged = timeline_.waitFor(rootChangeLogged);
  ASSERT_TRUE(logged);
  EXPECT_GE(logged->time - start, std::chrono::milliseconds(490));
}

TEST_F(BundleWatchTest, EachLossOfBundleEndsAgentWithinTwoSeconds) {
  const auto renamesTo = [](const std::string& from, const std::string& to) {
    return [from, to] {
      fs::remove_all(to);
      fs::rename(from, to);
    };
  };
  const auto plainly = [this] { launch(); };
  EXPECT_LT(timeToEnd(plainly, renamesTo(bundle_, bundle_ + " old")), maxTimeToEnd);
  EXPECT_LT(timeToEnd(plainly, renamesTo("/tmp/Folder/Applications", "/tmp/Folder/Programs")), maxTimeToEnd);
  EXPECT_LT(timeToEnd(plainly, [this] { removeAtOnce(bundle_); }), maxTimeToEnd);
  const auto withBothNotices = [this] {
    launch();
    send("-non");
    send("-neon");
    ASSERT_TRUE(shows(isAccessNotice) && shows(isLoadingNotice));
  };
  EXPECT_LT(timeToEnd(withBothNotices, renamesTo(bundle_, bundle_ + " old")), maxTimeToEnd);
  EXPECT_LT(timeToEnd(withBothNotices, [this] { removeAtOnce(bundle_); }), maxTimeToEnd);
}

TEST_F(BundleWatchTest, FailingUnloadStillEndsAgent) {
  launch();
  timeline_.setStatus("launchctl", 1);
  fs::rename(bundle_, bundle_ + " old");
  EXPECT_THAT(textsOfEnd(), ElementsAre(rootChangeLogged, unloadRun, killRun));
}

TEST_F(BundleWatchTest, RemovalEndsAgentFromTwoNestedNotices) {
  launch();
  send("-non");
  send("-neon");
  ASSERT_TRUE(shows(isAccessNotice) && shows(isLoadingNotice));
  timeline_.clear();
  removeAtOnce(bundle_);
  EXPECT_THAT(textsOfEnd(), ElementsAre(rootChangeLogged, unloadRun, killRun));
  EXPECT_TRUE(hides(isAccessNotice));
  EXPECT_EQ(recordsLike(quitRecord), 1);
}

TEST_F(BundleWatchTest, RemovalDuringPauseOfSwitchIsHandledAfterIt) {
  ASSERT_TRUE(host_.start(bus_));
  launch();
  ASSERT_TRUE(host_.waitForEvent("registered"));
  const auto begin = std::chrono::steady_clock::now();
  ASSERT_TRUE(host_.click("Automount Off"));
  ASSERT_TRUE(waitForText("pipe: -u"));
  fs::rename(bundle_, bundle_ + " old");
  EXPECT_THAT(textsOfEnd(), ElementsAre("pipe: -u", rootChangeLogged, unloadRun, killRun));
  EXPECT_GE(timeline_.waitFor(rootChangeLogged)->time - begin, std::chrono::milliseconds(1990));
}

TEST_F(BundleWatchTest, ChangeInsideIsLoggedAndEndsWatch) {
  launch();
  endWatch();
  fs::remove_all(bundle_);
  expectUnnoticed();
}

TEST_F(BundleWatchTest, ModeOrTimeChangeInsideIsLoggedAndEndsWatch) {
  const std::string file = "/Contents/Info.plist";
  for (const std::string command : {"chmod go-w ", "touch "}) {
    install("/tmp/Folder/Applications/Tovalin.app");
    launch();
    ASSERT_EQ(std::system((command + bundle_ + file).c_str()), 0);
    EXPECT_TRUE(waitForText(changeLogged)) << command;
    fs::remove_all(bundle_);
    expectUnnoticed();
    timeline_.clear();
  }
}

TEST_F(BundleWatchTest, RemovalReportedInTwoBatchesIsIgnored) {
  launch();
  fs::remove_all(bundle_ + "/Contents/Resources/TovalinTray.app/Contents/Resources");
  ASSERT_TRUE(waitForText(changeLogged));
  fs::remove_all(bundle_);
  expectUnnoticed();
}

TEST_F(BundleWatchTest, AgentsOwnActionsAreNotReportedAsChanges) {
  ASSERT_TRUE(host_.start(bus_));
  launch();
  ASSERT_TRUE(host_.waitForEvent("registered"));
  send("-non");
  ASSERT_TRUE(shows(isAccessNotice));
  send("-noff");
  ASSERT_TRUE(hides(isAccessNotice));
  send("-neon");
  send("-neoff");
  ASSERT_TRUE(waitForText("run: osascript"));
  ASSERT_TRUE(host_.click("Review Tovalin"));
  ASSERT_TRUE(waitForText("run: open"));
  fs::rename(bundle_, bundle_ + " old");
  ASSERT_TRUE(waitForText(rootChangeLogged));
  EXPECT_EQ(count(changeLogged), 0);
}

TEST_F(BundleWatchTest, StoppedWatchReleasesInotifyInstances) {
  launch();
  const auto queues = [this] {
    int number = 0;
    for (const auto& entry : fs::directory_iterator("/proc/" + std::to_string(agent_.pid()) + "/fd")) {
      std::error_code gone;
      if (fs::read_symlink(entry.path(), gone) == "anon_inode:inotify") ++number;
    }
    return number;
  };
  const int before = queues();
  endWatch();
  EXPECT_EQ(queues(), before - 2);
}

TEST_F(BundleWatchTest, LaunchContinuesWithoutWatch) {
  const std::string limit = "echo 0 >/proc/sys/user/max_inotify_instances";
  const auto inside = [&](const std::string& command) {
    return std::vector<std::string>{
        "unshare", "--user", "--map-root-user", "sh", "-c", limit + " && " + command, agentProgram()};
  };
  test_support::ChildProcess trial;
  if (!trial.start(inside("true")) || trial.wait() != ExitStatus{.code = 0})
    GTEST_SKIP() << "cannot set inotify limits in a user namespace";
  test_support::ChildOptions options;
  options.environment = environment_;
  ASSERT_TRUE(agent_.start(inside("exec \"$0\""), options));
  ASSERT_TRUE(waitForText("log 6: read_pipe read pipe message : "));
  EXPECT_LT(position("pipe: -ton"), position("log 6: read_pipe read pipe message : "));
  fs::remove_all(bundle_);
  expectUnnoticed();
  EXPECT_EQ(count("log 6: filestreamcallback"), 0);
}

}  // namespace

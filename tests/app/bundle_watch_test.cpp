#include "app/bundle_watch.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <vector>

#include "tests/harness/processes/child_process.h"
#include "tests/harness/processes/timeline.h"

namespace {

namespace fs = std::filesystem;
using platform::FileEvent;
using platform::FileEventStream;
using test_support::ExitStatus;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* root = "/tmp/Watched.app";
constexpr const char* unloadRun =
    "run: launchctl unload -F /Library/LaunchAgents/com.kesmoor.tovalintrayagent.plist";

TEST(EndsAgent, OnlyRootChangedFlagEndsAgent) {
  EXPECT_TRUE(endsAgent(0x20));
  EXPECT_TRUE(endsAgent(0x21));
  EXPECT_TRUE(endsAgent(0xffffffff));
  for (int bit = 0; bit < 32; ++bit) EXPECT_EQ(endsAgent(1U << bit), bit == 5) << "bit " << bit;
  EXPECT_FALSE(endsAgent(0));
  EXPECT_FALSE(endsAgent(0xffffffdf));
}

// Runs the callback in a child process. The exit status is 0 if the callback ends the agent, kReturned if it
// returns.
class BundleWatch : public testing::Test {
 protected:
  static constexpr int kReturned = 3;

  void SetUp() override {
    ASSERT_TRUE(timeline_.valid());
    fs::create_directories(root);
    fs::create_directories("/tmp/outside commands");
    fs::copy_file(TOVALIN_RECORDER, "/tmp/outside commands/launchctl", fs::copy_options::overwrite_existing);
  }

  void startWith(const std::vector<std::string>& flags) {
    std::vector<std::string> command{BUNDLE_WATCH_PROBE, root};
    command.insert(command.end(), flags.begin(), flags.end());
    test_support::ChildOptions options;
    options.environment = {{"PATH", "/tmp/outside commands:/usr/bin:/bin"}};
    ASSERT_TRUE(probe_.start(command, options));
  }
  std::optional<ExitStatus> callWith(const std::vector<std::string>& flags) {
    startWith(flags);
    return probe_.wait();
  }

  test_support::Timeline timeline_;
  test_support::ChildProcess probe_;
};

TEST_F(BundleWatch, EventsAfterRootChangedAreNotLogged) {
  EXPECT_EQ(callWith({"0", "0x20", "0x1"}), ExitStatus{.code = 0});
  EXPECT_THAT(timeline_.texts(), ElementsAre("log 6: filestreamcallback event flag : 0, 0x0",
                                             "log 6: filestreamcallback event flag : 32, 0x20", unloadRun));
}

TEST_F(BundleWatch, OtherEventsAreLoggedInOrderAndDoNotEndAgent) {
  EXPECT_EQ(callWith({"0x1", "0", "0x80000000"}), ExitStatus{.code = kReturned});
  EXPECT_THAT(timeline_.texts(),
              ElementsAre("log 6: filestreamcallback event flag : 1, 0x1",
                          "log 6: filestreamcallback event flag : 0, 0x0",
                          "log 6: filestreamcallback event flag : -2147483648, 0x80000000"));
}

TEST_F(BundleWatch, RootChangedAmongOtherFlagsEndsAgent) {
  EXPECT_EQ(callWith({"0x21"}), ExitStatus{.code = 0});
  EXPECT_THAT(timeline_.texts(), ElementsAre("log 6: filestreamcallback event flag : 33, 0x21", unloadRun));
}

TEST_F(BundleWatch, FailedUnloadStillEndsAgent) {
  timeline_.setStatus("launchctl", 1);
  EXPECT_EQ(callWith({"0x20", "0x20"}), ExitStatus{.code = 0});
  EXPECT_THAT(timeline_.texts(), ElementsAre("log 6: filestreamcallback event flag : 32, 0x20", unloadRun));
}

TEST_F(BundleWatch, EmptyBatchLogsNothing) {
  EXPECT_EQ(callWith({}), ExitStatus{.code = kReturned});
  EXPECT_THAT(timeline_.texts(), IsEmpty());
}

// Returns the number of inotify instances of a process; a stream holds one until it is stopped.
int queuesOf(const std::string& process) {
  int count = 0;
  for (const auto& entry : fs::directory_iterator("/proc/" + process + "/fd")) {
    std::error_code gone;
    if (fs::read_symlink(entry.path(), gone) == "anon_inode:inotify") ++count;
  }
  return count;
}

TEST_F(BundleWatch, AnyBatchStopsStreamEvenEmptyOne) {
  for (const std::vector<FileEvent>& events : {std::vector<FileEvent>{}, {{root, 0}}}) {
    const auto stream = FileEventStream::create(root, std::chrono::milliseconds(500), filestreamcallback);
    ASSERT_GT(queuesOf("self"), 0);
    filestreamcallback(*stream, events);
    EXPECT_EQ(queuesOf("self"), 0);
  }
}

TEST_F(BundleWatch, StreamIsStoppedBeforeCommandRuns) {
  timeline_.hold("launchctl");
  startWith({"0x20"});
  ASSERT_TRUE(timeline_.waitFor(unloadRun));
  EXPECT_EQ(queuesOf(std::to_string(probe_.pid())), 0);
  timeline_.release("launchctl");
  EXPECT_EQ(probe_.wait(), ExitStatus{.code = 0});
}

}  // namespace

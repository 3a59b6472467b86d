#include "tests/harness/processes/timeline.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <syslog.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/harness/processes/child_process.h"

namespace test_support {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

// Runs `sh` with the recorder as `launchctl` and `killall` first on PATH.
class TimelineTest : public testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories("/tmp/bin");
    for (const char* name : {"/tmp/bin/launchctl", "/tmp/bin/killall"}) {
      if (!std::filesystem::exists(name)) std::filesystem::create_symlink(TOVALIN_RECORDER, name);
    }
  }

  void startShell(ChildProcess& shell, const std::string& commands) {
    const std::string path = std::string("/tmp/bin:") + std::getenv("PATH");
    ASSERT_TRUE(shell.start({"sh", "-c", commands}, {.environment = {{"PATH", path}}}));
  }

  void shell(const std::string& commands) {
    ChildProcess child;
    startShell(child, commands);
    ASSERT_EQ(child.wait(), ExitStatus{.code = 0});
  }
};

void writeToPipe(const std::string& text) {
  const FileDescriptor pipe(::open("/tmp/KMPIPE", O_WRONLY | O_NONBLOCK | O_CLOEXEC));
  ASSERT_EQ(::write(pipe.get(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

TEST_F(TimelineTest, RecordsAllSourcesInOrder) {
  Timeline timeline;
  ASSERT_TRUE(timeline.valid());
  shell(
      "logger -p user.err before; sleep 0.02; printf %s -ton > /tmp/KMPIPE; launchctl unload -F 'a b';"
      "printf %s -toff > /tmp/KMPIPE; killall Name; logger -p user.info after");
  timeline.add("added");
  EXPECT_THAT(timeline.texts(), ElementsAre("log 3: before", "pipe: -ton", "run: launchctl unload -F a b",
                                            "pipe: -toff", "run: killall Name", "log 6: after", "added"));
}

TEST_F(TimelineTest, MessageIsRecordedBeforeNextCommandContinues) {
  Timeline timeline;
  for (int i = 0; i < 50; ++i) {
    timeline.clear();
    shell("printf %s -ton > /tmp/KMPIPE; launchctl");
    ASSERT_THAT(timeline.texts(), ElementsAre("pipe: -ton", "run: launchctl"));
  }
}

TEST_F(TimelineTest, LogEntriesAndMessageReadTogetherKeepOrder) {
  Timeline timeline;
  timeline.add("start");
  // The timeline reads nothing while waitFor evaluates its predicate.
  bool first = true;
  ASSERT_TRUE(timeline.waitFor([&](const TimelineEvent&) {
    if (!std::exchange(first, false)) return true;
    ::syslog(LOG_ERR, "before");
    std::this_thread::sleep_for(20ms);
    writeToPipe("-ton");
    std::this_thread::sleep_for(20ms);
    ::syslog(LOG_ERR, "after");
    return true;
  }));
  ::closelog();
  EXPECT_THAT(timeline.texts(), ElementsAre("start", "log 3: before", "pipe: -ton", "log 3: after"));
}

TEST_F(TimelineTest, EachEventIsTakenOnce) {
  Timeline timeline;
  constexpr std::size_t kEvents = 2000;
  std::jthread source([&] {
    for (std::size_t i = 0; i < kEvents; ++i) timeline.add(std::to_string(i));
  });
  std::vector<std::string> taken;
  while (taken.size() < kEvents && timeline.waitFor("")) {
    for (const TimelineEvent& event : timeline.take()) taken.push_back(event.text);
  }
  ASSERT_EQ(taken.size(), kEvents);
  for (std::size_t i = 0; i < kEvents; ++i) ASSERT_EQ(taken[i], std::to_string(i));
  EXPECT_THAT(timeline.texts(), ElementsAre());
}

TEST_F(TimelineTest, TimeStampsMeasurePause) {
  Timeline timeline;
  shell("launchctl; sleep 0.2; killall");
  const std::vector<TimelineEvent> events = timeline.events();
  ASSERT_EQ(events.size(), 2U);
  EXPECT_GE(events[1].time - events[0].time, 190ms);
  EXPECT_LT(events[1].time - events[0].time, 20s);
}

TEST_F(TimelineTest, RunHasArgumentsAndSearchPath) {
  Timeline timeline;
  shell("launchctl 'a b' '' 'c\nd'");
  const std::vector<TimelineEvent> events = timeline.events();
  ASSERT_EQ(events.size(), 1U);
  EXPECT_THAT(events[0].arguments, ElementsAre("a b", "", "c\nd"));
  EXPECT_EQ(events[0].searchPath, std::string("/tmp/bin:") + std::getenv("PATH"));
}

TEST_F(TimelineTest, MessagesInPipeAtOnceAreOneEvent) {
  Timeline timeline;
  timeline.add("start");
  bool first = true;
  ASSERT_TRUE(timeline.waitFor([&](const TimelineEvent&) {
    if (std::exchange(first, false)) {
      writeToPipe("-m");
      writeToPipe("-u");
    }
    return true;
  }));
  EXPECT_THAT(timeline.texts(), ElementsAre("start", "pipe: -m-u"));
}

TEST_F(TimelineTest, RunExitsWithGivenStatus) {
  Timeline timeline;
  timeline.setStatus("killall", 3);
  ChildProcess child;
  startShell(child, "launchctl && killall");
  EXPECT_EQ(child.wait(), ExitStatus{.code = 3});
}

TEST_F(TimelineTest, HeldRunContinuesOnceReleased) {
  Timeline timeline;
  timeline.hold("launchctl");
  ChildProcess child;
  startShell(child, "launchctl one; killall two");
  ASSERT_TRUE(timeline.waitFor("run: launchctl one"));
  EXPECT_EQ(child.wait(100ms), std::nullopt);
  timeline.release("launchctl");
  EXPECT_EQ(child.wait(), ExitStatus{.code = 0});
  EXPECT_THAT(timeline.texts(), ElementsAre("run: launchctl one", "run: killall two"));
}

TEST_F(TimelineTest, RunWithoutTimelineExitsWithZero) {
  shell("launchctl unload && killall Name");
}

TEST_F(TimelineTest, RunContinuesWhenTimelineEnds) {
  ChildProcess child;
  {
    Timeline timeline;
    timeline.hold("launchctl");
    startShell(child, "launchctl");
    ASSERT_TRUE(timeline.waitFor("run: launchctl"));
  }
  EXPECT_EQ(child.wait(), ExitStatus{.code = 0});
}

TEST_F(TimelineTest, RunFindsTimelineThroughEnvironment) {
  Timeline timeline({.pipe = {}, .log = {}, .commands = "/tmp/elsewhere.sock"});
  ASSERT_TRUE(timeline.valid());
  shell("TOVALIN_TIMELINE=/tmp/elsewhere.sock launchctl there");
  EXPECT_THAT(timeline.texts(), ElementsAre("run: launchctl there"));
}

TEST_F(TimelineTest, WaitForReturnsLaterEvent) {
  Timeline timeline;
  ChildProcess child;
  startShell(child, "logger -p user.info not yet; logger -p user.info now it is");
  const std::optional<TimelineEvent> event = timeline.waitFor("log 6: now");
  ASSERT_TRUE(event);
  EXPECT_EQ(event->text, "log 6: now it is");
}

TEST_F(TimelineTest, WaitForEndsAtTimeout) {
  Timeline timeline;
  timeline.add("something else");
  const auto before = std::chrono::steady_clock::now();
  EXPECT_FALSE(timeline.waitFor("else", 50ms));
  EXPECT_GE(std::chrono::steady_clock::now() - before, 50ms);
}

TEST_F(TimelineTest, ClearDiscardsEvents) {
  Timeline timeline;
  writeToPipe("-ton");
  timeline.clear();
  writeToPipe("-toff");
  EXPECT_THAT(timeline.texts(), ElementsAre("pipe: -toff"));
}

TEST_F(TimelineTest, ExistingFilesAreNotReplaced) {
  std::ofstream("/tmp/KMPIPE") << "kept";
  {
    Timeline timeline;
    EXPECT_FALSE(timeline.valid());
  }
  EXPECT_TRUE(std::filesystem::is_regular_file("/tmp/KMPIPE"));
  std::filesystem::remove("/tmp/KMPIPE");
}

TEST_F(TimelineTest, DestructorRemovesAllFiles) {
  {
    const Timeline timeline;
    ASSERT_TRUE(timeline.valid());
    ASSERT_TRUE(std::filesystem::is_fifo("/tmp/KMPIPE"));
  }
  EXPECT_FALSE(std::filesystem::exists("/tmp/KMPIPE"));
  EXPECT_FALSE(std::filesystem::exists("/dev/log"));
  EXPECT_FALSE(std::filesystem::exists("/tmp/timeline.sock"));
}

}  // namespace
}  // namespace test_support

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <filesystem>

#include "tests/tools/tool_process.h"

namespace {

namespace fs = std::filesystem;

using test_support::ChildProcess;
using test_support::ExitStatus;
using tools_test::runToEnd;
using tools_test::toolPath;

std::vector<std::string> notificationFor(const std::string& seconds) {
  return {toolPath("tovalinnotification"),
          "-title",
          "Title",
          "-subtitle",
          "Subtitle",
          "-message",
          "Message",
          "-closeLabel",
          "No",
          "-actions",
          "Yes",
          "-bundlepath",
          "/X/Y.app",
          "-timeout",
          seconds};
}

TEST(FakeNotification, EndsAfterTimeout) {
  const auto begin = std::chrono::steady_clock::now();
  const auto finished = runToEnd(notificationFor("0.2"));
  EXPECT_EQ(finished.status, ExitStatus{.code = 0});
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(200));
}

TEST(FakeNotification, PrintsNoticeBeforeTimeout) {
  ChildProcess notification;
  ASSERT_TRUE(notification.start(notificationFor("1000")));
  EXPECT_EQ(notification.readLine(), "title:        Title");
  EXPECT_TRUE(notification.running());
}

TEST(FakeNotification, KillallFindsItByLongName) {
  ASSERT_EQ(runToEnd({"killall", "tovalinnotification"}).status, ExitStatus{.code = 1})
      << "one is there already";
  ChildProcess notification;
  ASSERT_TRUE(notification.start(notificationFor("1000")));
  ASSERT_TRUE(notification.readLine());
  EXPECT_EQ(runToEnd({"killall", "tovalinnotification"}).status, ExitStatus{.code = 0});
  EXPECT_EQ(notification.wait(), ExitStatus{.signal = SIGTERM});
}

TEST(FakeUpdater, PrintsItsBundle) {
  const std::string program = "/tmp/tovalinupdate.app/Contents/MacOS/tovalinupdate";
  fs::create_directories(fs::path(program).parent_path());
  fs::copy_file(toolPath("tovalinupdate"), program);
  const auto finished = runToEnd({program});
  EXPECT_EQ(finished.status, ExitStatus{.code = 0});
  EXPECT_EQ(finished.output, "the updater was opened from /tmp/tovalinupdate.app\n");
  fs::remove_all("/tmp/tovalinupdate.app");
}

TEST(FakeUpdater, PrintsItsPathOutsideBundle) {
  EXPECT_EQ(runToEnd({toolPath("tovalinupdate")}).output,
            "the updater was opened from " + toolPath("tovalinupdate") + "\n");
}

}  // namespace

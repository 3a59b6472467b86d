#include <gmock/gmock.h>

#include <string>

#include "tests/end_to_end/agent_test.h"
#include "tests/harness/servers/product_server_double.h"

namespace {

using test_support::ExitStatus;
using testing::ElementsAre;
using testing::HasSubstr;

// The server offers a newer version.
class UpdateDue : public AgentTest {
 protected:
  void installWithNewerVersion(const std::string& path) {
    server_.putVersion("99.0.0");
    install(path);
    setServers(server_.origin());
  }

  test_support::ProductServerDouble server_;
};

TEST_F(UpdateDue, BundlePathWithBlankIsQuotedInCommands) {
  installWithNewerVersion("/tmp/My Applications/Tovalin.app");
  launchAgent();
  EXPECT_EQ(count("log 3: Tovalin working path [/tmp/My Applications/Tovalin.app]"), 1);
  const auto run = timeline_.waitFor("run: open");
  ASSERT_TRUE(run);
  ASSERT_GE(run->arguments.size(), 3u);
  EXPECT_EQ(run->arguments[1], "/tmp/My");
  EXPECT_EQ(run->arguments[2], "Applications/Tovalin.app/Contents/Resources/tovalinnotification.app");
}

TEST_F(UpdateDue, NotificationHelperRunsOnceBeforeMessage) {
  installWithNewerVersion("/tmp/Applications/Tovalin.app");
  launchAgent();
  const auto run = timeline_.waitFor("run: open");
  ASSERT_TRUE(run);
  EXPECT_THAT(run->arguments,
              ElementsAre("-a", "/tmp/Applications/Tovalin.app/Contents/Resources/tovalinnotification.app",
                          "--args", "-title", "Tovalin Notification", "-subtitle", "New version available",
                          "-message", "Do you want to install now?", "-closeLabel", "No", "-actions", "Yes",
                          "-bundlepath", "/tmp/Applications/Tovalin.app", "-timeout", "10"));
  EXPECT_EQ(count("run: open"), 1);
  EXPECT_LT(position("run: open"), position("pipe: -ton"));
}

// Returns a path of `length` bytes for the main application's bundle.
std::string pathOfLength(std::size_t length) {
  const std::string start = "/tmp/", end = "/Tovalin.app";
  std::string folders;
  for (std::size_t left = length - start.size() - end.size(); left > 0;) {
    const std::size_t piece = left > 202 ? 200 : left;
    folders += std::string(piece, 'x');
    left -= piece;
    if (left > 0) {
      folders += '/';
      --left;
    }
  }
  return start + folders + end;
}

TEST_F(UpdateDue, BundlePathOf404BytesIsNotified) {
  installWithNewerVersion(pathOfLength(404));
  ASSERT_EQ(bundle_.size(), 404u);
  launchAgent();
  EXPECT_EQ(count("run: open"), 1);
}

TEST_F(UpdateDue, BundlePathOf405BytesEndsAgentWithMessage) {
  installWithNewerVersion(pathOfLength(405));
  ASSERT_EQ(bundle_.size(), 405u);
  startAgent();
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 1});
  EXPECT_EQ(agent_.takeErrorOutput(),
            "TovalinTray: the bundle's path is too long for the update notice: " + bundle_ + "\n");
  EXPECT_EQ(count("run: "), 0);
  EXPECT_EQ(count("pipe: "), 0);
}

TEST_F(UpdateDue, BundlePathOf405BytesRunsWithoutUpdate) {
  install(pathOfLength(405));
  launchAgent();
  EXPECT_EQ(count("log 3: Tovalin working path [" + bundle_ + "]"), 1);
}

TEST_F(UpdateDue, BundlePathBeyondBufferEndsAgentWithMessage) {
  install(pathOfLength(1024));
  startAgent();
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 1});
  EXPECT_THAT(agent_.takeErrorOutput(), HasSubstr("TovalinTray: the bundle's path is too long: "));
}

}  // namespace

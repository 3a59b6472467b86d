#include <gtest/gtest.h>

#include <filesystem>

#include "app/launch_rules.h"
#include "support/version_rules.h"
#include "tests/companions/companion_run.h"
#include "tests/harness/desktop/session_bus.h"
#include "tests/harness/processes/file_contents.h"
#include "tests/harness/processes/line_program.h"

namespace {

using companions_test::builtBundle;
using companions_test::runToEnd;
using companions_test::writeScript;
using test_support::ExitStatus;

const std::string copiedBundle = "/tmp/Tovalin.app";
const std::string opened = "/tmp/opened";

// Runs the agent's commands with the shell and the agent's helpers, on the built bundle.
class UpdateCommand : public testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::copy(builtBundle(), copiedBundle, std::filesystem::copy_options::recursive);
    writeScript("/tmp/programs/xdg-open", "echo \"$*\" >/tmp/opening && mv /tmp/opening " + opened);
    // Makes the test independent of the system's package sources.
    writeScript("/tmp/programs/apt-cache", "");
    ASSERT_TRUE(bus_.start());
    ASSERT_TRUE(server_.start({TOVALIN_NOTIFICATION_DOUBLE}, options()));
  }
  void TearDown() override {
    for (const char* const path :
         {"/tmp/Tovalin.app", "/tmp/programs", "/tmp/opened", "/tmp/tovalinupdate.app"}) {
      std::filesystem::remove_all(path);
    }
  }

  [[nodiscard]] test_support::ChildOptions options() const {
    const std::string helpers = copiedBundle + "/Contents/Resources/TovalinTray.app/Contents/Helpers";
    return {.environment = {{"DBUS_SESSION_BUS_ADDRESS", bus_.address()},
                            {"PATH", helpers + ":/tmp/programs:/usr/bin:/bin"}}};
  }
  void runInShell(const std::string& command) {
    ASSERT_EQ(runToEnd({"sh", "-c", command}, options()).status, ExitStatus{.code = 0}) << command;
  }
  static void downloadPageIsOpened() {
    ASSERT_TRUE(test_support::waitUntil([] { return std::filesystem::exists(opened); }));
    EXPECT_EQ(test_support::contentsOf(opened), TOVALIN_DOWNLOAD_PAGE "\n");
  }

  test_support::SessionBus bus_;
  test_support::LineProgram server_;
};

TEST_F(UpdateCommand, LaunchCommandShowsNoticeAndYesOpensDownloadPage) {
  const auto command = updateNoticeCommand(copiedBundle);
  ASSERT_TRUE(command);
  runInShell(*command);
  const auto notice = server_.waitForEvent("notify 1");
  ASSERT_TRUE(notice);
  EXPECT_TRUE(
      notice->ends_with("|Tovalin Notification|New version available\\nDo you want to install now?|"
                        "accept,Yes,decline,No|com.kesmoor.tovalintrayagent|10000"))
      << *notice;
  ASSERT_TRUE(server_.ask("action 1 accept").ok);
  downloadPageIsOpened();
}

TEST_F(UpdateCommand, SupportWindowCommandsOpenDownloadPageFromCopy) {
  const auto copy = copyUpdaterCommand(copiedBundle);
  ASSERT_TRUE(copy);
  runInShell(*copy);
  std::filesystem::remove_all(copiedBundle + "/Contents/Resources/tovalinupdate.app");
  runInShell("open /tmp/tovalinupdate.app");
  downloadPageIsOpened();
}

}  // namespace

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <chrono>
#include <filesystem>

#include "tests/companions/companion_run.h"
#include "tests/harness/desktop/session_bus.h"
#include "tests/harness/processes/line_program.h"

namespace {

using companions_test::builtBundle;
using companions_test::Finished;
using companions_test::runToEnd;
using companions_test::writeScript;
using test_support::ChildOptions;
using test_support::ChildProcess;
using test_support::ExitStatus;
using test_support::LineProgram;
using testing::HasSubstr;

const std::string bundle = "/tmp/My Apps/Tovalin.app";
const std::string updater = bundle + "/Contents/Resources/tovalinupdate.app/Contents/MacOS/tovalinupdate";

// The program on a private session bus, with an updater that reports how it was started.
class Notification : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(bus_.start());
    ASSERT_TRUE(server_.start({TOVALIN_NOTIFICATION_DOUBLE}, options()));
    writeScript(updater,
                "echo \"updater $# ${XDG_ACTIVATION_TOKEN-none} $(grep SigBlk /proc/self/status)\"; exit 7");
  }
  void TearDown() override { std::filesystem::remove_all("/tmp/My Apps"); }

  [[nodiscard]] ChildOptions options() const {
    return {.environment = {{"DBUS_SESSION_BUS_ADDRESS", bus_.address()}}};
  }

  [[nodiscard]] static std::vector<std::string> command(const std::string& seconds = "1000") {
    return {builtBundle() + "/Contents/Resources/tovalinnotification.app/Contents/MacOS/tovalinnotification",
            "-title",
            "Tovalin Notification",
            "-subtitle",
            "New version <2> & more",
            "-message",
            "Do you want to install now?",
            "-closeLabel",
            "No",
            "-actions",
            "Yes",
            "-bundlepath",
            bundle,
            "-timeout",
            seconds};
  }

  void startShown(const std::string& seconds = "1000") {
    ASSERT_TRUE(program_.start(command(seconds), options()));
    ASSERT_TRUE(server_.waitForEvent("notify 1"));
  }

  void endsWithoutUpdater() {
    EXPECT_EQ(program_.wait(), ExitStatus{.code = 0});
    EXPECT_EQ(program_.takeOutput(), "");
  }

  void order(const std::string& command) { ASSERT_TRUE(server_.ask(command).ok) << command; }

  test_support::SessionBus bus_;
  LineProgram server_;
  ChildProcess program_;
};

std::string shown(const std::string& body, const std::string& milliseconds) {
  return "notify "
         "1|Tovalin|file:///tmp/My%20Apps/Tovalin.app/Contents/Resources/TovalinTray.app/Contents/Resources/"
         "icon.png|Tovalin Notification|" +
         body + "|accept,Yes,decline,No|com.kesmoor.tovalintrayagent|" + milliseconds;
}

TEST_F(Notification, ShowsTextsButtonsAndTimeout) {
  ASSERT_TRUE(program_.start(command("10"), options()));
  EXPECT_EQ(server_.waitForEvent("notify"),
            shown("New version <2> & more\\nDo you want to install now?", "10000"));
}

TEST_F(Notification, TextsAreEscapedForServerWithMarkup) {
  order("capabilities actions body body-markup");
  ASSERT_TRUE(program_.start(command("10"), options()));
  EXPECT_EQ(server_.waitForEvent("notify"),
            shown("New version &lt;2&gt; &amp; more\\nDo you want to install now?", "10000"));
}

TEST_F(Notification, YesClosesNoticeAndExecutesUpdater) {
  startShown();
  order("action 1 accept");
  EXPECT_TRUE(server_.waitForEvent("close 1"));
  EXPECT_EQ(program_.wait(), ExitStatus{.code = 7});
  EXPECT_EQ(program_.takeOutput(), "updater 0 none SigBlk:\t0000000000000000\n");
}

TEST_F(Notification, ActivationTokenReachesUpdater) {
  startShown();
  order("token 2 of-another-notice");
  order("token 1 raise-me");
  order("action 1 accept");
  EXPECT_EQ(program_.wait(), ExitStatus{.code = 7});
  EXPECT_THAT(program_.takeOutput(), HasSubstr("updater 0 raise-me "));
}

TEST_F(Notification, NoClosesNoticeAndEndsProgram) {
  startShown();
  order("action 1 decline");
  EXPECT_TRUE(server_.waitForEvent("close 1"));
  endsWithoutUpdater();
}

TEST_F(Notification, ClosedNoticeEndsProgram) {
  startShown();
  order("closed 1 2");
  endsWithoutUpdater();
}

TEST_F(Notification, TimeoutClosesNoticeAndEndsProgram) {
  const auto begin = std::chrono::steady_clock::now();
  startShown("0.3");
  EXPECT_TRUE(server_.waitForEvent("close 1"));
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(300));
  endsWithoutUpdater();
}

TEST_F(Notification, SignalsOfOtherNoticesAreIgnored) {
  startShown();
  for (const char* const another : {"action 2 accept", "closed 2 2", "action 0 accept", "closed 0 2"})
    order(another);
  order("action 1 decline");
  EXPECT_TRUE(server_.waitForEvent("close 1"));
  endsWithoutUpdater();
}

TEST_F(Notification, SignalsOfOtherProgramsAreIgnored) {
  LineProgram forger;
  ASSERT_TRUE(forger.start({TOVALIN_NOTIFICATION_DOUBLE, "--nameless"}, options()));
  startShown();
  ASSERT_TRUE(forger.ask("action 1 accept").ok);
  order("action 1 decline");
  endsWithoutUpdater();
}

TEST_F(Notification, KillallClosesNoticeAndEndsProgram) {
  ASSERT_EQ(runToEnd({"killall", "tovalinnotification"}).status, ExitStatus{.code = 1})
      << "another instance is running";
  startShown();
  EXPECT_EQ(runToEnd({"killall", "tovalinnotification"}).status, ExitStatus{.code = 0});
  EXPECT_TRUE(server_.waitForEvent("close 1"));
  endsWithoutUpdater();
}

TEST_F(Notification, KillallEndsProgramBeforeServerReplies) {
  order("silence");
  startShown();
  EXPECT_EQ(runToEnd({"killall", "tovalinnotification"}).status, ExitStatus{.code = 0});
  endsWithoutUpdater();
}

TEST_F(Notification, MissingUpdaterIsAnError) {
  std::filesystem::remove(updater);
  ChildOptions withError = options();
  withError.error = test_support::Redirection::pipe();
  ASSERT_TRUE(program_.start(command(), withError));
  ASSERT_TRUE(server_.waitForEvent("notify"));
  order("action 1 accept");
  EXPECT_EQ(program_.wait(), ExitStatus{.code = 1});
  EXPECT_EQ(program_.takeErrorOutput(), "tovalinnotification: " + updater + ": No such file or directory\n");
}

TEST_F(Notification, MissingServerIsAnError) {
  server_.process().kill();
  ASSERT_TRUE(server_.process().wait());
  const Finished finished = runToEnd(command(), options());
  EXPECT_EQ(finished.status, ExitStatus{.code = 1});
  EXPECT_THAT(finished.error,
              HasSubstr("tovalinnotification: The name org.freedesktop.Notifications was not provided"));
}

TEST_F(Notification, MissingBusIsAnError) {
  const Finished finished =
      runToEnd(command(), {.environment = {{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/tmp/nowhere"}}});
  EXPECT_EQ(finished.status, ExitStatus{.code = 1});
  EXPECT_THAT(finished.error, HasSubstr("tovalinnotification: Failed to connect to socket /tmp/nowhere"));
}

TEST_F(Notification, InvalidCommandLineIsRefused) {
  std::vector<std::string> wrong = command();
  wrong.resize(3);
  const Finished finished = runToEnd(wrong, options());
  EXPECT_EQ(finished.status, ExitStatus{.code = 2});
  EXPECT_EQ(finished.error,
            "tovalinnotification: missing: -subtitle -message -closeLabel -actions -bundlepath -timeout\n"
            "see tovalinnotification --help\n");
}

TEST_F(Notification, HelpNamesEveryOption) {
  const Finished finished = runToEnd({command().front(), "--help"});
  EXPECT_EQ(finished.status, ExitStatus{.code = 0});
  for (const char* const option :
       {"-title", "-subtitle", "-message", "-closeLabel", "-actions", "-bundlepath", "-timeout"}) {
    EXPECT_THAT(finished.output, HasSubstr(option));
  }
}

}  // namespace

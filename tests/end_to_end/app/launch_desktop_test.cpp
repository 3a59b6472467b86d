#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "tests/end_to_end/app/launch_fixture.h"

namespace {

using test_support::ExitStatus;
using testing::HasSubstr;

TEST_F(Launch, DarkDesktopIsReadAtStart) {
  ASSERT_TRUE(portal_.start(bus_, "1"));
  launchAgent();
  EXPECT_EQ(count("log 3: Dark Mode : 1"), 1);
}

TEST_F(Launch, OtherReplyOfPortalMeansLight) {
  ASSERT_TRUE(portal_.start(bus_));
  for (const char* value : {"0", "2", "17", "int 1", "string Dark", "bool true", "double 1", "list 1"}) {
    timeline_.clear();
    ASSERT_TRUE(portal_.setSilently(value));
    launchAgent();
    EXPECT_EQ(count("log 3: Dark Mode : 0"), 1) << value;
    terminateAgent();
  }
}

TEST_F(Launch, UnansweredPortalRequestMeansLightAfterTimeout) {
  ASSERT_TRUE(portal_.start(bus_, "1"));
  ASSERT_TRUE(portal_.delayAnswers(std::chrono::minutes(10)));
  const auto start = std::chrono::steady_clock::now();
  launchAgent();
  // The timeout is 0.5 s; the rest allows for a slow machine.
  EXPECT_LT(timeline_.waitFor("pipe: -ton")->time - start, std::chrono::seconds(8));
  EXPECT_EQ(count("log 3: Dark Mode : 0"), 1);
}

TEST_F(Launch, PortalEndingWithoutReplyMeansLight) {
  ASSERT_TRUE(portal_.start(bus_, "1"));
  ASSERT_TRUE(portal_.delayAnswers(std::chrono::minutes(10)));
  startAgent();
  ASSERT_TRUE(portal_.waitForEvent("read"));
  portal_.process().kill();
  ASSERT_TRUE(waitForText("pipe: -ton")) << agent_.takeErrorOutput();
  EXPECT_EQ(count("log 3: Dark Mode : 0"), 1);
  terminateAgent();
}

TEST_F(Launch, AgentRunsWithoutSessionBus) {
  environment_["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/tmp/no such bus";
  launchAgent();
  EXPECT_EQ(count("log 3: Dark Mode : 0"), 1);
  terminateAgent();
}

TEST_F(Launch, MissingDisplayIsReportedAndEndsAgent) {
  environment_["DISPLAY"] = ":4711";
  startAgent();
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 1});
  EXPECT_THAT(agent_.takeErrorOutput(), HasSubstr("TovalinTray: cannot open the display \":4711\"\n"));
  EXPECT_TRUE(waitForText("log 3: cannot open the display \":4711\""));
}

TEST_F(Launch, UnsetDisplayIsReportedAndEndsAgent) {
  environment_["DISPLAY"] = std::nullopt;
  startAgent();
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 1});
  EXPECT_THAT(agent_.takeErrorOutput(),
              HasSubstr("TovalinTray: cannot open a display: DISPLAY is not set\n"));
}

TEST_F(Launch, WithoutXAWaylandDisplayIsTried) {
  environment_["DISPLAY"] = std::nullopt;
  startAgent();
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 1});
  EXPECT_THAT(agent_.takeErrorOutput(), HasSubstr("wayland"));
}

TEST_F(Launch, UnknownPlatformPluginIsReportedByQt) {
  environment_["QT_QPA_PLATFORM"] = "bogus";
  startAgent();
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 1});
  EXPECT_THAT(agent_.takeErrorOutput(), HasSubstr("platform plugin"));
}

TEST_F(Launch, BusThatNeverAnswersIsNotUsed) {
  const test_support::FileDescriptor mute(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const sockaddr_un address{AF_UNIX, "/tmp/mute bus"};
  ::unlink(address.sun_path);
  ASSERT_EQ(::bind(mute.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(::listen(mute.get(), 10), 0);
  environment_["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/tmp/mute bus";
  launchAgent();
  EXPECT_EQ(count("log 3: the session bus does not answer; continuing without it"), 1);
  terminateAgent();
}

TEST_F(Launch, UnsetBusAddressStartsNoBus) {
  environment_["DBUS_SESSION_BUS_ADDRESS"] = std::nullopt;
  launchAgent();
  terminateAgent();
  for (const auto& process : std::filesystem::directory_iterator("/proc")) {
    std::ifstream name(process.path() / "comm");
    std::string command;
    std::getline(name, command);
    EXPECT_NE(command, "dbus-launch");
  }
}

TEST_F(Launch, LateReplyOfPortalIsAppliedAsChange) {
  ASSERT_TRUE(host_.start(bus_));
  ASSERT_TRUE(portal_.start(bus_, "1"));
  ASSERT_TRUE(portal_.delayAnswers(std::chrono::milliseconds(800)));
  launchAgent();
  EXPECT_EQ(count("log 3: Dark Mode : 0"), 1);
  ASSERT_TRUE(host_.waitForEvent("registered"));
  const auto shown = [&] {
    EXPECT_TRUE(host_.saveIcon("/tmp/late.png", "20"));
    return runOnDisplay({"sh", "-c", "convert /tmp/late.png -alpha off -format '%[fx:maxima]' info:"});
  };
  // The icon for dark panels is white.
  EXPECT_TRUE(test_support::waitUntil([&] { return shown() == "1"; }));
}

}  // namespace

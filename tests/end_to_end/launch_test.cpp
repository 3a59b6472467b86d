#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "tests/end_to_end/agent_test.h"
#include "tests/support/product_server_double.h"
#include "tests/support/raw_http_server.h"

namespace {

using test_support::ExitStatus;
using testing::ElementsAre;
using testing::HasSubstr;

class Launch : public AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    if (!HasFatalFailure()) install("/tmp/Applications/Tovalin.app");
  }

  // Up to the message; the listener's thread speaks after it.
  [[nodiscard]] std::vector<std::string> textsOfLaunch() {
    std::vector<std::string> all = texts();
    all.resize(std::min(all.size(), position("pipe: -ton") + 1));
    return all;
  }
};

TEST_F(Launch, TellsItsStateThenTheMainApplicationOnceInThisOrder) {
  launchAgent();
  EXPECT_THAT(textsOfLaunch(), ElementsAre("log 3: Tovalin working path [/tmp/Applications/Tovalin.app]",
                                           "log 3: bActive : 1", "log 3: Dark Mode : 0", "pipe: -ton"));
  terminateAgent();
  EXPECT_EQ(count("pipe: "), 1);
}

TEST_F(Launch, AutorunOffUnloadsTheLaunchAgentOnceBetweenThePathAndTheState) {
  writeProperties({.autorun = false});
  launchAgent();
  EXPECT_THAT(textsOfLaunch(),
              ElementsAre("log 3: Tovalin working path [/tmp/Applications/Tovalin.app]", unloadRun,
                          "log 3: bActive : 1", "log 3: Dark Mode : 0", "pipe: -ton"));
}

TEST_F(Launch, AReadableFileWithoutAutorunUnloadsTheLaunchAgentAndGoesOn) {
  writeProperties({.autorun = std::nullopt});
  launchAgent();
  EXPECT_EQ(count(unloadRun), 1);
}

TEST_F(Launch, AFailingUnloadIsNotLookedAt) {
  writeProperties({.autorun = false});
  timeline_.setStatus("launchctl", 1);
  launchAgent();
  EXPECT_EQ(count(unloadRun), 1);
}

TEST_F(Launch, AnUnreadablePropertyFileUnloadsNothingAndMeansAutomountOn) {
  std::filesystem::remove(bundle_ + "/Contents/TovalinPorperty.plist");
  launchAgent();
  EXPECT_THAT(textsOfLaunch(), ElementsAre("log 3: Tovalin working path [/tmp/Applications/Tovalin.app]",
                                           "log 3: GetProperty CFReadStreamOpen error",
                                           "log 3: GetProperty CFReadStreamOpen error", "log 3: bActive : 1",
                                           "log 3: Dark Mode : 0", "pipe: -ton"));
}

TEST_F(Launch, AutomountIsOffWhenTheFileSaysSoOrSaysNothing) {
  for (const std::optional<bool> active : {std::optional<bool>(false), std::optional<bool>()}) {
    timeline_.clear();
    writeProperties({.active = active});
    launchAgent();
    EXPECT_EQ(count("log 3: bActive : 0"), 1);
    terminateAgent();
  }
}

TEST_F(Launch, ADarkDesktopIsSeenAtTheStart) {
  ASSERT_TRUE(portal_.start(bus_, "1"));
  launchAgent();
  EXPECT_EQ(count("log 3: Dark Mode : 1"), 1);
}

TEST_F(Launch, WhateverElseTheDesktopSaysMeansLight) {
  ASSERT_TRUE(portal_.start(bus_));
  for (const char* value : {"0", "2", "17", "int 1", "string Dark", "bool true", "double 1", "list 1"}) {
    timeline_.clear();
    ASSERT_TRUE(portal_.setSilently(value));
    launchAgent();
    EXPECT_EQ(count("log 3: Dark Mode : 0"), 1) << value;
    terminateAgent();
  }
}

TEST_F(Launch, ADesktopThatDoesNotAnswerMeansLightAndHoldsNothingUp) {
  ASSERT_TRUE(portal_.start(bus_, "1"));
  ASSERT_TRUE(portal_.delayAnswers(std::chrono::minutes(10)));
  const auto start = std::chrono::steady_clock::now();
  launchAgent();
  // Half a second is allowed; the rest is room for a slow machine.
  EXPECT_LT(timeline_.waitFor("pipe: -ton")->time - start, std::chrono::seconds(8));
  EXPECT_EQ(count("log 3: Dark Mode : 0"), 1);
}

TEST_F(Launch, ADesktopThatDiesBeforeItAnswersMeansLightAndHoldsNothingUp) {
  ASSERT_TRUE(portal_.start(bus_, "1"));
  ASSERT_TRUE(portal_.delayAnswers(std::chrono::minutes(10)));
  startAgent();
  ASSERT_TRUE(portal_.waitForEvent("read"));
  portal_.process().kill();
  ASSERT_TRUE(waitForText("pipe: -ton")) << agent_.takeErrorOutput();
  EXPECT_EQ(count("log 3: Dark Mode : 0"), 1);
  terminateAgent();
}

TEST_F(Launch, AnInfoListWithoutAVersionIsToldAndTheLaunchGoesOn) {
  std::ofstream(agentContents() + "/Info.plist") << "damaged";
  launchAgent();
  EXPECT_EQ(position("log 3:  0etBundleVersion fail"), position("log 3: Dark Mode : 0") + 1);
}

TEST_F(Launch, NobodyListeningIsToldOnBothChannelsAndTheLaunchGoesOn) {
  std::filesystem::remove("/tmp/KMPIPE");
  startAgent();
  EXPECT_EQ(agent_.readLine(), "open pipe failed. errno : 2");
  EXPECT_TRUE(waitForText("log 3: open pipe failed. errno : 2"));
  terminateAgent();
  EXPECT_FALSE(std::filesystem::exists("/tmp/KMPIPE"));
}

TEST_F(Launch, MissingPicturesAreToldAndTheLaunchGoesOn) {
  std::filesystem::remove_all(agentContents() + "/Resources");
  launchAgent();
  for (int i = 0; i < 4; ++i) EXPECT_THAT(agent_.readErrorLine().value_or(""), HasSubstr("] Invalid Image"));
  terminateAgent();
}

TEST_F(Launch, WithoutASessionBusTheAgentStillRuns) {
  environment_["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/tmp/no such bus";
  launchAgent();
  EXPECT_EQ(count("log 3: Dark Mode : 0"), 1);
  terminateAgent();
}

TEST_F(Launch, WithoutAHomeTheMissingFolderIsToldAndTheAgentRuns) {
  environment_["HOME"] = std::nullopt;
  launchAgent();
  EXPECT_TRUE(waitForText("log 3: get dir fail!!"));
  terminateAgent();
}

TEST_F(Launch, AReadOnlyDataFolderIsToldAndTheAgentRuns) {
  environment_["XDG_DATA_HOME"] = "/proc/self";
  launchAgent();
  EXPECT_THAT(agent_.readErrorLine().value_or(""), HasSubstr("open log failed: "));
  EXPECT_TRUE(waitForText("log 3: data file open fail"));
  EXPECT_THAT(agent_.readErrorLine().value_or(""), HasSubstr("create file failed: "));
  terminateAgent();
}

TEST_F(Launch, WithoutARuntimeFolderThePrivateOneOfTheUserServes) {
  environment_["XDG_RUNTIME_DIR"] = std::nullopt;
  writeProperties({.autorun = false});
  launchAgent();
  EXPECT_EQ(count(unloadRun), 1);
  terminateAgent();
}

TEST_F(Launch, WithoutADisplayTheAgentSaysSoAndEnds) {
  environment_["DISPLAY"] = ":4711";
  startAgent();
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 1});
  EXPECT_THAT(agent_.takeErrorOutput(), HasSubstr("TovalinTray: cannot open the display \":4711\"\n"));
  EXPECT_TRUE(waitForText("log 3: cannot open the display \":4711\""));
}

TEST_F(Launch, WithoutTheNameOfADisplayTheAgentSaysSoAndEnds) {
  environment_["DISPLAY"] = std::nullopt;
  startAgent();
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 1});
  EXPECT_THAT(agent_.takeErrorOutput(),
              HasSubstr("TovalinTray: cannot open a display: DISPLAY is not set\n"));
}

TEST_F(Launch, AnotherKindOfScreenThatIsNotThereIsToldInTheToolkitsWords) {
  environment_["QT_QPA_PLATFORM"] = "bogus";
  startAgent();
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 1});
  EXPECT_THAT(agent_.takeErrorOutput(), HasSubstr("platform plugin"));
}

TEST_F(Launch, ABusThatTakesConnectionsButDoesNotAnswerIsDoneWithout) {
  const test_support::FileDescriptor mute(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const sockaddr_un address{AF_UNIX, "/tmp/mute bus"};
  ::unlink(address.sun_path);
  ASSERT_EQ(::bind(mute.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(::listen(mute.get(), 10), 0);
  environment_["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/tmp/mute bus";
  launchAgent();
  EXPECT_EQ(count("log 3: the session bus does not answer; going on without it"), 1);
  terminateAgent();
}

TEST_F(Launch, WithoutABusAddressNoBusIsStarted) {
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

TEST_F(Launch, AnAnswerOfTheDesktopThatComesLateCountsAsAChange) {
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
  // The icon for dark panels is drawn in white.
  EXPECT_TRUE(test_support::waitUntil([&] { return shown() == "1"; }));
}

TEST_F(Launch, ClosedStandardStreamsLeadNowhere) {
  std::filesystem::remove("/tmp/KMPIPE");
  test_support::ChildOptions options;
  options.environment = environment_;
  ASSERT_TRUE(agent_.start({"sh", "-c", "exec \"$0\" <&- >&- 2>&-", agentProgram()}, options));
  ASSERT_TRUE(waitForText("log 3: open pipe failed. errno : 2"));
  for (const char* stream : {"0", "1", "2"}) {
    EXPECT_EQ(std::filesystem::read_symlink("/proc/" + std::to_string(agent_.pid()) + "/fd/" + stream),
              "/dev/null");
  }
  EXPECT_EQ(std::filesystem::file_size("/tmp/runtime/TovalinTray/lock"), 0u);
}

TEST_F(Launch, APrivateFolderThatIsSomebodyElsesIsToldAndNotUsed) {
  environment_["XDG_RUNTIME_DIR"] = std::nullopt;
  std::filesystem::create_directory("/tmp/elsewhere of theirs");
  const std::string place = "/tmp/TovalinTray-" + std::to_string(::geteuid());
  std::filesystem::remove_all(place);
  std::filesystem::create_symlink("/tmp/elsewhere of theirs", place);
  launchAgent();
  EXPECT_EQ(count("log 3: outside commands run without the agent's helpers: no folder of the user's own at " +
                  place),
            1);
  EXPECT_TRUE(std::filesystem::is_empty("/tmp/elsewhere of theirs"));
  std::filesystem::remove(place);
}

TEST_F(Launch, OutsideAMainApplicationsBundleTheAgentSaysSoAndEnds) {
  std::filesystem::create_directories("/tmp/elsewhere/Contents/MacOS");
  std::filesystem::copy_file(agentProgram(), "/tmp/elsewhere/Contents/MacOS/TovalinTray");
  std::filesystem::copy_file(agentProgram(), "/tmp/TovalinTray");
  for (const char* place : {"/tmp/elsewhere/Contents/MacOS/TovalinTray", "/tmp/TovalinTray"}) {
    test_support::ChildOptions options;
    options.environment = environment_;
    options.error = test_support::Redirection::pipe();
    ASSERT_TRUE(agent_.start({place}, options));
    EXPECT_EQ(endOfAgent(), ExitStatus{.code = 1});
    EXPECT_THAT(agent_.takeErrorOutput(), HasSubstr("TovalinTray: not inside a main application's bundle"));
  }
  EXPECT_EQ(count("pipe: "), 0);
}

TEST_F(Launch, ASignalDuringTheLaunchIsServedAfterIt) {
  writeProperties({.autorun = false});
  timeline_.hold("launchctl");
  startAgent();
  ASSERT_TRUE(waitForText(unloadRun));
  agent_.terminate();
  timeline_.release("launchctl");
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0});
  EXPECT_LT(position("pipe: -ton"), position(killRun));
}

TEST_F(Launch, TheServerOptionIsReadAndItsFileMade) {
  std::filesystem::create_directories("/tmp/home/.local/share/Tovalin");
  launchAgent();
  terminateAgent();
  std::ifstream file("/tmp/home/.local/share/Tovalin/TovalinServerOption.txt");
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "1");
}

TEST_F(Launch, TwoBeaconsTellOfTheStartAndOfTheVersion) {
  launchAgent();
  ASSERT_TRUE(waitForBeacon("?category=applaunch&applaunch=version1.0.0"));
  EXPECT_THAT(beacons(), ElementsAre("?category=applaunch&applaunch=start",
                                     "?category=applaunch&applaunch=version1.0.0"));
}

TEST_F(Launch, WithoutAVersionTheSecondBeaconSaysNull) {
  std::ofstream(agentContents() + "/Info.plist")
      << "<plist version=\"1.0\"><dict><key>TovalinProductServer</key>"
         "<string>http://127.0.0.1:1</string></dict></plist>";
  launchAgent();
  EXPECT_TRUE(waitForBeacon("?category=applaunch&applaunch=version(null)"));
}

TEST_F(Launch, WithoutTheWebViewsHelperTheAgentRuns) {
  std::filesystem::remove(agentContents() + "/Helpers/TovalinWebView");
  launchAgent();
  terminateAgent();
  EXPECT_THAT(beacons(), testing::IsEmpty());
}

TEST_F(Launch, ServerThatAnswersWithAnErrorPageIsNoNewerVersion) {
  test_support::ProductServerDouble server;
  setServers(server.origin());
  launchAgent();
  ASSERT_EQ(server.requests().size(), 1u);
  EXPECT_EQ(server.requests()[0].target, "/product/nimba/binary/tovalin_recent_version_info.xml");
  EXPECT_EQ(count("run: open"), 0);
}

TEST_F(Launch, SameVersionOnTheServerIsNoUpdate) {
  test_support::ProductServerDouble server;
  server.putVersion("1.0.0");
  setServers(server.origin());
  launchAgent();
  EXPECT_EQ(count("run: open"), 0);
}

TEST_F(Launch, SilentServerHoldsTheLaunchUpForThreeSeconds) {
  const test_support::RawHttpServer server(
      [](test_support::RawConnection& connection) { static_cast<void>(connection.waitForEnd()); });
  setServers(server.url(""));
  launchAgent();
  const auto told = [&](const char* text) { return timeline_.waitFor(text)->time; };
  const auto waited = told("pipe: -ton") - told("log 3: Dark Mode");
  EXPECT_GE(waited, std::chrono::milliseconds(2900));
  EXPECT_LT(waited, std::chrono::seconds(8));
}

// The server has a newer version.
class UpdateDue : public AgentTest {
 protected:
  void installWithNewerVersion(const std::string& path) {
    server_.putVersion("99.0.0");
    install(path);
    setServers(server_.origin());
  }

  test_support::ProductServerDouble server_;
};

TEST_F(UpdateDue, ABundlePathWithABlankWorksAndItsCommandsStandAsTheyAre) {
  installWithNewerVersion("/tmp/My Applications/Tovalin.app");
  launchAgent();
  EXPECT_EQ(count("log 3: Tovalin working path [/tmp/My Applications/Tovalin.app]"), 1);
  const auto run = timeline_.waitFor("run: open");
  ASSERT_TRUE(run);
  ASSERT_GE(run->arguments.size(), 3u);
  EXPECT_EQ(run->arguments[1], "/tmp/My");
  EXPECT_EQ(run->arguments[2], "Applications/Tovalin.app/Contents/Resources/tovalinnotification.app");
}

TEST_F(UpdateDue, TheNotificationHelperIsToldOnceBeforeTheMainApplication) {
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

// A path of so many bytes to the main application's bundle.
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

TEST_F(UpdateDue, ABundlePathOf404BytesIsTold) {
  installWithNewerVersion(pathOfLength(404));
  ASSERT_EQ(bundle_.size(), 404u);
  launchAgent();
  EXPECT_EQ(count("run: open"), 1);
}

TEST_F(UpdateDue, ABundlePathOf405BytesEndsTheAgentWithAMessage) {
  installWithNewerVersion(pathOfLength(405));
  ASSERT_EQ(bundle_.size(), 405u);
  startAgent();
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 1});
  EXPECT_EQ(agent_.takeErrorOutput(),
            "TovalinTray: the bundle's path is too long to tell of an update: " + bundle_ + "\n");
  EXPECT_EQ(count("run: "), 0);
  EXPECT_EQ(count("pipe: "), 0);
}

TEST_F(UpdateDue, APathOf405BytesIsNoMatterWhenNoUpdateIsDue) {
  install(pathOfLength(405));
  launchAgent();
  EXPECT_EQ(count("log 3: Tovalin working path [" + bundle_ + "]"), 1);
}

TEST_F(UpdateDue, APathBeyondThePathBufferEndsTheAgentWithAMessage) {
  install(pathOfLength(1024));
  startAgent();
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 1});
  EXPECT_THAT(agent_.takeErrorOutput(), HasSubstr("TovalinTray: the bundle's path is too long: "));
}

}  // namespace

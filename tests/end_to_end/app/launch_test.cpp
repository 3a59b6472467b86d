#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "tests/end_to_end/app/launch_fixture.h"
#include "tests/harness/processes/file_contents.h"
#include "tests/harness/servers/product_server_double.h"
#include "tests/harness/servers/raw_http_server.h"

namespace {

using test_support::ExitStatus;
using testing::ElementsAre;
using testing::HasSubstr;

TEST_F(Launch, StepsRunInOrder) {
  launchAgent();
  EXPECT_THAT(textsOfLaunch(), ElementsAre("log 3: Tovalin working path [/tmp/Applications/Tovalin.app]",
                                           "log 3: bActive : 1", "log 3: Dark Mode : 0", "pipe: -ton"));
  terminateAgent();
  EXPECT_EQ(count("pipe: "), 1);
}

TEST_F(Launch, AutorunOffUnloadsLaunchAgentOnce) {
  writeProperties({.autorun = false});
  launchAgent();
  EXPECT_THAT(textsOfLaunch(),
              ElementsAre("log 3: Tovalin working path [/tmp/Applications/Tovalin.app]", unloadRun,
                          "log 3: bActive : 1", "log 3: Dark Mode : 0", "pipe: -ton"));
}

TEST_F(Launch, MissingAutorunUnloadsLaunchAgentAndContinues) {
  writeProperties({.autorun = std::nullopt});
  launchAgent();
  EXPECT_EQ(count(unloadRun), 1);
}

TEST_F(Launch, FailingUnloadIsIgnored) {
  writeProperties({.autorun = false});
  timeline_.setStatus("launchctl", 1);
  launchAgent();
  EXPECT_EQ(count(unloadRun), 1);
}

TEST_F(Launch, UnreadablePropertyFileMeansAutomountOnWithoutUnload) {
  std::filesystem::remove(bundle_ + "/Contents/TovalinPorperty.plist");
  launchAgent();
  EXPECT_THAT(textsOfLaunch(), ElementsAre("log 3: Tovalin working path [/tmp/Applications/Tovalin.app]",
                                           "log 3: GetProperty CFReadStreamOpen error",
                                           "log 3: GetProperty CFReadStreamOpen error", "log 3: bActive : 1",
                                           "log 3: Dark Mode : 0", "pipe: -ton"));
}

TEST_F(Launch, AutomountIsOffIfSetOrUnset) {
  for (const std::optional<bool> active : {std::optional<bool>(false), std::optional<bool>()}) {
    timeline_.clear();
    writeProperties({.active = active});
    launchAgent();
    EXPECT_EQ(count("log 3: bActive : 0"), 1);
    terminateAgent();
  }
}

TEST_F(Launch, InfoListWithoutVersionIsLoggedAndLaunchContinues) {
  std::ofstream(agentContents() + "/Info.plist") << "damaged";
  launchAgent();
  EXPECT_EQ(position("log 3:  0etBundleVersion fail"), position("log 3: Dark Mode : 0") + 1);
}

TEST_F(Launch, MissingReaderIsReportedTwiceAndLaunchContinues) {
  std::filesystem::remove("/tmp/KMPIPE");
  startAgent();
  EXPECT_EQ(agent_.readLine(), "open pipe failed. errno : 2");
  EXPECT_TRUE(waitForText("log 3: open pipe failed. errno : 2"));
  terminateAgent();
  EXPECT_FALSE(std::filesystem::exists("/tmp/KMPIPE"));
}

TEST_F(Launch, MissingPicturesAreLoggedAndLaunchContinues) {
  std::filesystem::remove_all(agentContents() + "/Resources");
  launchAgent();
  for (int i = 0; i < 4; ++i) EXPECT_THAT(agent_.readErrorLine().value_or(""), HasSubstr("] Invalid Image"));
  terminateAgent();
}

TEST_F(Launch, MissingHomeIsLoggedAndAgentRuns) {
  environment_["HOME"] = std::nullopt;
  launchAgent();
  EXPECT_TRUE(waitForText("log 3: get dir fail!!"));
  terminateAgent();
}

TEST_F(Launch, ReadOnlyDataFolderIsLoggedAndAgentRuns) {
  environment_["XDG_DATA_HOME"] = "/proc/self";
  launchAgent();
  EXPECT_THAT(agent_.readErrorLine().value_or(""), HasSubstr("open log failed: "));
  EXPECT_TRUE(waitForText("log 3: data file open fail"));
  EXPECT_THAT(agent_.readErrorLine().value_or(""), HasSubstr("create file failed: "));
  terminateAgent();
}

TEST_F(Launch, PrivateFolderReplacesMissingRuntimeFolder) {
  environment_["XDG_RUNTIME_DIR"] = std::nullopt;
  writeProperties({.autorun = false});
  launchAgent();
  EXPECT_EQ(count(unloadRun), 1);
  terminateAgent();
}

// $XDG_RUNTIME_DIR is unset, or names a missing folder or one that other users may enter.
class LaunchWithoutRuntimeFolder : public InstalledAgentTest,
                                   public testing::WithParamInterface<std::optional<std::string>> {};

TEST_P(LaunchWithoutRuntimeFolder, CreatesNoOtherFolder) {
  std::filesystem::create_directory("/tmp/entered");
  std::filesystem::permissions("/tmp/entered", std::filesystem::perms(0755));
  environment_["XDG_RUNTIME_DIR"] = GetParam();
  launchAgentInPanel();
  terminateAgent();
  std::vector<std::string> made;
  for (const auto& entry : std::filesystem::directory_iterator("/tmp")) made.push_back(entry.path());
  EXPECT_THAT(made, testing::Not(testing::Contains(
                        testing::AnyOf(testing::StartsWith("/tmp/runtime-"), testing::Eq("/tmp/missing")))));
}

INSTANTIATE_TEST_SUITE_P(Each, LaunchWithoutRuntimeFolder,
                         testing::Values(std::nullopt, "/tmp/missing", "/tmp/entered"));

TEST_F(Launch, ClosedStandardStreamsAreRedirectedToNull) {
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

TEST_F(Launch, PrivateFolderOfAnotherUserIsReportedAndNotUsed) {
  environment_["XDG_RUNTIME_DIR"] = std::nullopt;
  std::filesystem::create_directory("/tmp/elsewhere of theirs");
  const std::string place = "/tmp/TovalinTray-" + std::to_string(::geteuid());
  std::filesystem::remove_all(place);
  std::filesystem::create_symlink("/tmp/elsewhere of theirs", place);
  launchAgent();
  EXPECT_EQ(count("log 3: the agent's helpers are not available after the removal of its bundle: no private "
                  "folder at " +
                  place),
            1);
  EXPECT_TRUE(std::filesystem::is_empty("/tmp/elsewhere of theirs"));
  EXPECT_FALSE(std::filesystem::exists("/tmp/runtime-root"));
  std::filesystem::remove(place);
}

TEST_F(Launch, OutsideBundleIsReportedAndEndsAgent) {
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

TEST_F(Launch, SignalDuringLaunchIsHandledAfterIt) {
  writeProperties({.autorun = false});
  timeline_.hold("launchctl");
  startAgent();
  ASSERT_TRUE(waitForText(unloadRun));
  agent_.terminate();
  timeline_.release("launchctl");
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0});
  EXPECT_LT(position("pipe: -ton"), position(killRun));
}

TEST_F(Launch, ServerOptionIsReadAndItsFileCreated) {
  std::filesystem::create_directories("/tmp/home/.local/share/Tovalin");
  launchAgent();
  terminateAgent();
  EXPECT_EQ(test_support::contentsOf("/tmp/home/.local/share/Tovalin/TovalinServerOption.txt"), "1");
}

TEST_F(Launch, SendsStartAndVersionBeacons) {
  launchAgent();
  ASSERT_TRUE(waitForBeacon("?category=applaunch&applaunch=version1.0.0"));
  EXPECT_THAT(beacons(), ElementsAre("?category=applaunch&applaunch=start",
                                     "?category=applaunch&applaunch=version1.0.0"));
}

TEST_F(Launch, MissingVersionIsSentAsNull) {
  std::ofstream(agentContents() + "/Info.plist")
      << "<plist version=\"1.0\"><dict><key>TovalinProductServer</key>"
         "<string>http://127.0.0.1:1</string></dict></plist>";
  launchAgent();
  EXPECT_TRUE(waitForBeacon("?category=applaunch&applaunch=version(null)"));
}

// A run has three beacons: two at the start and one at the end.
TEST_F(Launch, WithoutWebViewHelperBeaconsAreDroppedSilently) {
  const auto textsOfRun = [&] {
    timeline_.clear();
    launchAgentInPanel();
    EXPECT_TRUE(waitForText("log 6: read_pipe read pipe message : "));
    EXPECT_TRUE(host_.click("Quit Tovalin"));
    EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0});
    return texts();
  };
  const std::vector<std::string> withHelper = textsOfRun();
  ASSERT_TRUE(waitForBeacon("?category=clickaction&clickaction=quit"));
  std::filesystem::remove(agentContents() + "/Helpers/TovalinWebView");
  EXPECT_THAT(textsOfRun(), testing::UnorderedElementsAreArray(withHelper));
  EXPECT_EQ(agent_.takeErrorOutput(), "");
  EXPECT_THAT(beacons(), testing::IsEmpty());
}

TEST_F(Launch, ErrorPageIsNoNewerVersion) {
  test_support::ProductServerDouble server;
  setServers(server.origin());
  launchAgent();
  ASSERT_EQ(server.requests().size(), 1u);
  EXPECT_EQ(server.requests()[0].target, "/product/nimba/binary/tovalin_recent_version_info.xml");
  EXPECT_EQ(count("run: open"), 0);
}

TEST_F(Launch, SameVersionIsNoUpdate) {
  test_support::ProductServerDouble server;
  server.putVersion("1.0.0");
  setServers(server.origin());
  launchAgent();
  EXPECT_EQ(count("run: open"), 0);
}

TEST_F(Launch, UnresponsiveServerDelaysLaunchByThreeSeconds) {
  const test_support::RawHttpServer server(
      [](test_support::RawConnection& connection) { static_cast<void>(connection.waitForEnd()); });
  setServers(server.url(""));
  launchAgent();
  const auto timeOf = [&](const char* text) { return timeline_.waitFor(text)->time; };
  const auto waited = timeOf("pipe: -ton") - timeOf("log 3: Dark Mode");
  EXPECT_GE(waited, std::chrono::milliseconds(2900));
  EXPECT_LT(waited, std::chrono::seconds(8));
}

}  // namespace

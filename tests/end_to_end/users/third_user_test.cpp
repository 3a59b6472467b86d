#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include "tests/end_to_end/users/ordinary_user_fixture.h"
#include "tests/harness/processes/file_contents.h"

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using test_support::ChildProcess;
using test_support::contentsOf;
using test_support::Redirection;
using test_support::waitUntil;

constexpr unsigned thirdUser = 65533;

// Returns owner, type, mode and contents. The change time detects changes that were reverted.
std::string stateOf(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return "nothing";
  std::ostringstream look;
  look << status.st_uid << ' ' << std::oct << status.st_mode << ' ' << status.st_ino << ' '
       << status.st_ctim.tv_sec << '.' << status.st_ctim.tv_nsec << ' ';
  if (S_ISLNK(status.st_mode)) look << fs::read_symlink(path);
  if (S_ISREG(status.st_mode)) look << contentsOf(path);
  if (S_ISDIR(status.st_mode)) look << (fs::is_empty(path) ? "empty" : "not empty");
  return look.str();
}

bool linksOfOthersAreFollowed() {
  return contentsOf("/proc/sys/fs/protected_symlinks") == "0\n";
}

// Files of a user who is neither the agent's nor root at the paths of the pipes.
class ThirdUser : public OrdinaryUser {
 protected:
  void SetUp() override {
    OrdinaryUser::SetUp();
    if (HasFatalFailure() || IsSkipped()) return;
    clean();
    startOpenBus();
  }
  void TearDown() override {
    OrdinaryUser::TearDown();
    clean();
    for (const char* path : {commandPipe, pipePath}) fs::remove_all(path);
  }

  // Creates `path` with this shell command as the other user, so that the agent's user can neither change nor
  // remove it.
  static void plant(const std::string& path, const std::string& command) {
    fs::remove(path);
    ASSERT_TRUE(succeeds({"sh", "-c", command + " " + path}, thirdUser));
    ASSERT_FALSE(succeeds({"chown", "--no-dereference", std::to_string(user), path}));
    ASSERT_FALSE(succeeds({"mv", "--no-target-directory", path, "/tmp/moved"}));
    ASSERT_TRUE(stateOf(path).starts_with(std::to_string(thirdUser))) << stateOf(path);
  }
  // Mode 0766, because the agent sets 0666 and the test must detect that.
  static void plantWorldWritableFile(const std::string& path, const std::string& content) {
    std::ofstream(source) << content;
    plant(path, "install -m 0766 "s + source);
    ASSERT_FALSE(succeeds({"chmod", "0666", path}));
    ASSERT_TRUE(succeeds(readingOf(path)) && succeeds(writingOf(path)));
  }
  static void plantPrivateFile(const std::string& path) {
    std::ofstream(source) << "-non";
    plant(path, "install -m 0600 "s + source);
    ASSERT_FALSE(succeeds(readingOf(path)) || succeeds(writingOf(path)));
  }
  static void plantWorldWritableFolder(const std::string& path) {
    plant(path, "mkdir -m 0777");
    ASSERT_TRUE(succeeds({"ls", path}));
  }
  // The kernel decides whether the agent may follow the link (fs.protected_symlinks).
  static void plantLinkToOwnFile(const std::string& path, const std::string& content) {
    std::ofstream(ownFile) << content;
    ASSERT_EQ(::chown(ownFile.c_str(), user, user), 0);
    ASSERT_EQ(::chmod(ownFile.c_str(), 0600), 0);
    plant(path, "ln -s " + ownFile);
    ASSERT_EQ(succeeds(readingOf(path)), linksOfOthersAreFollowed());
    ASSERT_FALSE(succeeds(readingOf(ownFile), thirdUser));
  }
  // A link that the agent cannot follow, whatever the value of fs.protected_symlinks.
  static void plantUnfollowableLink(const std::string& path) {
    fs::create_directory(otherUsersFolder);
    ASSERT_EQ(::chown(otherUsersFolder, thirdUser, thirdUser), 0);
    ASSERT_EQ(::chmod(otherUsersFolder, 0700), 0);
    ASSERT_TRUE(succeeds({"touch", otherUsersFile}, thirdUser));
    plant(path, "ln -s "s + otherUsersFile);
    ASSERT_FALSE(succeeds(readingOf(path)));
  }

  void startInPanel() {
    startAsUser();
    ASSERT_TRUE(host_.waitForEvent("registered")) << agent_.takeErrorOutput();
  }
  // Starts an agent that creates its own notification pipe.
  void startAndListen() {
    startInPanel();
    ASSERT_TRUE(waitForText("log 6: read_pipe read pipe message : "));
  }
  // The agent handles the next click two seconds later, for which not every test waits.
  void clickSwitch() {
    ASSERT_TRUE(host_.click("Automount Off"));
    EXPECT_TRUE(host_.waitForEvent("clicked Automount Off"));
  }
  void expectNoticesAndProperEnd() {
    OrdinaryUser::expectNoticesAndProperEnd();
    EXPECT_FALSE(fs::exists(pipePath));
  }
  void expectCommandsAndProperEnd() {
    EXPECT_TRUE(waitForText("pipe: -ton"));
    expectProperEnd();
    EXPECT_TRUE(waitForText("pipe: -toff"));
  }
  void expectNoListener() {
    EXPECT_TRUE(waitForText("log 3: -[nimbatrayAppDelegate notiThread] make pipe failed. errno : 17"));
    EXPECT_TRUE(waitForText("log 3: -[nimbatrayAppDelegate notiThread] open pipe error. errno : 13"));
    EXPECT_EQ(count("log 6: read_pipe"), 0);
  }

  static constexpr const char* source = "/tmp/user/source";
  static constexpr const char* otherUsersFolder = "/tmp/his";
  static constexpr const char* otherUsersFile = "/tmp/his/file";
  inline static const std::string ownFile = ownHome + "/file";

 private:
  // Starts a bus that accepts all users; by default a bus accepts only its own user, which is the test's.
  void startOpenBus() {
    const std::string configuration = "/tmp/user/bus.conf";
    std::ofstream(configuration)
        << "<busconfig><type>session</type><listen>unix:dir=/tmp/user</listen><auth>EXTERNAL</auth>"
           "<policy context=\"default\"><allow user=\"*\"/><allow own=\"*\"/>"
           "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/></policy></busconfig>";
    ASSERT_TRUE(openBus_.start({"dbus-daemon", "--nofork", "--nopidfile", "--nosyslog", "--print-address=1",
                                "--config-file=" + configuration},
                               {.error = Redirection::null()}));
    const std::string address = openBus_.readLine().value_or("");
    environment_["DBUS_SESSION_BUS_ADDRESS"] = address;
    ASSERT_TRUE(host_.LineProgram::start({TOVALIN_TRAY_HOST_DOUBLE},
                                         {.environment = {{"DBUS_SESSION_BUS_ADDRESS", address}}}));
  }
  static std::vector<std::string> readingOf(const std::string& path) { return {"cat", path}; }
  // Opens without O_CREAT, like the agent: in such a folder the kernel may refuse a shell's redirection.
  static std::vector<std::string> writingOf(const std::string& path) {
    return {"dd", "if=/dev/null", "of=" + path, "conv=nocreat,notrunc"};
  }
  static void clean() {
    for (const char* path : {otherUsersFolder, "/tmp/moved"}) fs::remove_all(path);
  }

  ChildProcess openBus_;
};

TEST_F(ThirdUser, WorldWritableFileAtCommandPipeHasOnlyFirstBytesOverwritten) {
  plantWorldWritableFile(commandPipe, "0123456789");
  startAndListen();
  EXPECT_EQ(contentsOf(commandPipe), "-ton456789");
  EXPECT_EQ(count("log 3: open pipe failed"), 0);
  expectNoticesAndProperEnd();
  EXPECT_EQ(contentsOf(commandPipe), "-toff56789");
  EXPECT_EQ(modeOf(commandPipe), 0766u);
  EXPECT_TRUE(stateOf(commandPipe).starts_with(std::to_string(thirdUser)));
}

TEST_F(ThirdUser, PrivateFileAtCommandPipeIsReportedAndLeftAlone) {
  plantPrivateFile(commandPipe);
  const std::string before = stateOf(commandPipe);
  startAndListen();
  EXPECT_EQ(count("log 3: open pipe failed. errno : 13"), 1);
  clickSwitch();
  EXPECT_TRUE(waitUntil([&] { return count("log 3: open pipe failed. errno : 13") == 2; }));
  expectNoticesAndProperEnd();
  EXPECT_EQ(count("log 3: open pipe failed. errno : 13"), 3);
  EXPECT_EQ(stateOf(commandPipe), before);
}

TEST_F(ThirdUser, FolderAtCommandPipeIsReportedAndLeftAlone) {
  plantWorldWritableFolder(commandPipe);
  const std::string before = stateOf(commandPipe);
  startAndListen();
  EXPECT_EQ(count("log 3: open pipe failed. errno : 21"), 1);
  expectNoticesAndProperEnd();
  EXPECT_EQ(stateOf(commandPipe), before);
}

TEST_F(ThirdUser, LinkAtCommandPipeIsFollowedOnlyIfKernelAllowsIt) {
  plantLinkToOwnFile(commandPipe, "0123456789");
  const std::string link = stateOf(commandPipe), file = stateOf(ownFile);
  startAndListen();
  if (linksOfOthersAreFollowed()) {
    EXPECT_EQ(contentsOf(ownFile), "-ton456789");
    EXPECT_EQ(count("log 3: open pipe failed"), 0);
  } else {
    EXPECT_EQ(count("log 3: open pipe failed. errno : 13"), 1);
  }
  expectNoticesAndProperEnd();
  if (linksOfOthersAreFollowed()) {
    EXPECT_EQ(contentsOf(ownFile), "-toff56789");
  } else {
    EXPECT_EQ(stateOf(ownFile), file);
  }
  EXPECT_EQ(modeOf(ownFile), 0600u);
  EXPECT_EQ(stateOf(commandPipe), link);
}

TEST_F(ThirdUser, UnfollowableLinkAtCommandPipeIsReportedAndLeftAlone) {
  plantUnfollowableLink(commandPipe);
  const std::string link = stateOf(commandPipe), file = stateOf(otherUsersFile);
  startAndListen();
  EXPECT_EQ(count("log 3: open pipe failed. errno : 13"), 1);
  expectNoticesAndProperEnd();
  EXPECT_EQ(stateOf(commandPipe), link);
  EXPECT_EQ(stateOf(otherUsersFile), file);
}

TEST_F(ThirdUser, WorldWritableFileAtNotificationPipeIsReadAndSurvivesUnchanged) {
  plantWorldWritableFile(pipePath, "-non");
  const std::string before = stateOf(pipePath);
  startInPanel();
  EXPECT_TRUE(shows(isAccessNotice));
  expectCommandsAndProperEnd();
  EXPECT_EQ(stateOf(pipePath), before);
}

TEST_F(ThirdUser, PrivateFileAtNotificationPipeIsReportedAndLeftAlone) {
  plantPrivateFile(pipePath);
  const std::string before = stateOf(pipePath);
  startInPanel();
  EXPECT_TRUE(waitForText("log 3: -[nimbatrayAppDelegate notiThread] open pipe error. errno : 13"));
  clickSwitch();
  EXPECT_TRUE(waitForText("pipe: -u"));
  expectCommandsAndProperEnd();
  EXPECT_EQ(count("log 6: read_pipe"), 0);
  EXPECT_EQ(stateOf(pipePath), before);
}

TEST_F(ThirdUser, FolderAtNotificationPipeIsReportedAndSurvivesUnchanged) {
  plantWorldWritableFolder(pipePath);
  const std::string before = stateOf(pipePath);
  startInPanel();
  EXPECT_TRUE(waitForText("log 3: read_pipe read error. errno : 21"));
  clickSwitch();
  EXPECT_TRUE(waitForText("pipe: -u"));
  expectCommandsAndProperEnd();
  EXPECT_EQ(stateOf(pipePath), before);
}

TEST_F(ThirdUser, LinkAtNotificationPipeIsFollowedOnlyIfKernelAllowsIt) {
  plantLinkToOwnFile(pipePath, "-non");
  const std::string link = stateOf(pipePath), file = stateOf(ownFile);
  startInPanel();
  if (linksOfOthersAreFollowed()) {
    EXPECT_TRUE(shows(isAccessNotice));
    EXPECT_EQ(modeOf(ownFile), 0666u);
  } else {
    expectNoListener();
  }
  expectCommandsAndProperEnd();
  if (!linksOfOthersAreFollowed()) {
    EXPECT_EQ(stateOf(ownFile), file);
  }
  EXPECT_EQ(contentsOf(ownFile), "-non");
  EXPECT_EQ(stateOf(pipePath), link);
}

TEST_F(ThirdUser, UnfollowableLinkAtNotificationPipeIsReportedAndSurvives) {
  plantUnfollowableLink(pipePath);
  const std::string link = stateOf(pipePath), file = stateOf(otherUsersFile);
  startInPanel();
  expectNoListener();
  expectCommandsAndProperEnd();
  EXPECT_EQ(stateOf(pipePath), link);
  EXPECT_EQ(stateOf(otherUsersFile), file);
}

}  // namespace

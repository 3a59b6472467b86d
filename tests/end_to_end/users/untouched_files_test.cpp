#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <fstream>
#include <map>

#include "tests/end_to_end/support/support_fixture.h"
#include "tests/harness/collect_messages.h"
#include "tests/harness/processes/file_contents.h"

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using test_support::contentsOf;
using test_support::ExitStatus;
using test_support::waitUntil;

constexpr const char* home = "/tmp/home";
const std::string ownFolder = std::string(home) + "/.local/share/Tovalin";
const std::string updaterCopy = "/tmp/tovalinupdate.app";
constexpr uid_t otherUser = 65533;

// Returns all properties of a file that a program could change.
std::string stateOf(const fs::path& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return "gone";
  std::string state = std::to_string(status.st_ino) + " mode " + std::to_string(status.st_mode) + " owner " +
                      std::to_string(status.st_uid);
  // The agent's files change the folder's own times.
  if (S_ISDIR(status.st_mode)) return state;
  state += " links " + std::to_string(status.st_nlink) + " changed " + std::to_string(status.st_mtim.tv_sec) +
           "." + std::to_string(status.st_mtim.tv_nsec);
  if (S_ISLNK(status.st_mode)) return state + " to " + fs::read_symlink(path).string();
  state += " size " + std::to_string(status.st_size);
  // Large files and other types, mostly programs, are compared by time and size only.
  if (!S_ISREG(status.st_mode) || status.st_size > 1 << 16) return state;
  return state + " holds " + contentsOf(path);
}

// Returns whether the path is one of the agent's own files or of the test's.
bool isLeftOut(const std::string& path) {
  const auto isBelow = [&](const std::string& top) { return path == top || path.starts_with(top + "/"); };
  return path == pipePath || path == "/tmp/KMPIPE" || path == "/tmp/timeline.sock" ||
         path.starts_with(ownFolder + "/TovalinUUID") ||
         path.starts_with(ownFolder + "/TovalinServerOption") || path == ownFolder + "/TovalinUsage.lock" ||
         path.starts_with(ownFolder + "/Tovalin_") || isBelow("/tmp/runtime/TovalinTray");
}

using Snapshot = std::map<std::string, std::string>;

Snapshot snapshot() {
  Snapshot files;
  for (const auto& entry : fs::recursive_directory_iterator("/tmp")) {
    const std::string path = entry.path();
    if (!isLeftOut(path)) files[path] = stateOf(path);
  }
  return files;
}

std::vector<std::string> differences(const Snapshot& before, const Snapshot& after) {
  std::vector<std::string> all;
  for (const auto& [path, state] : before) {
    const auto found = after.find(path);
    if (found == after.end()) {
      all.push_back("gone: " + path);
    } else if (found->second != state) {
      all.push_back("changed: " + path);
      all.back().append(": ").append(state).append(" -> ").append(found->second);
    }
  }
  for (const auto& [path, state] : after) {
    if (!before.contains(path)) all.push_back("new: " + path);
  }
  return all;
}

std::string dayFileName(std::time_t time) {
  std::tm day{};
  ::localtime_r(&time, &day);
  std::string name(30, '\0');
  name.resize(std::strftime(name.data(), name.size(), "Tovalin_%Y_%m_%d.dat", &day));
  return name;
}

// Returns the contents of all usage files, without following links.
std::string ownRecords() {
  std::string all;
  for (const auto& entry : fs::directory_iterator(ownFolder)) {
    if (entry.path().extension() == ".dat" && !entry.is_symlink()) all += contentsOf(entry.path());
  }
  return all;
}

int ownRecordsLike(const std::string& bytes) {
  const std::string all = ownRecords();
  int found = 0;
  for (std::size_t at = all.find(bytes); at != std::string::npos; at = all.find(bytes, at + 1)) ++found;
  return found;
}

void plant(const std::string& path) {
  fs::create_directories(fs::path(path).parent_path());
  std::ofstream(path) << "canary at " << path;
}

class UntouchedFiles : public SupportTest {
 protected:
  void SetUp() override {
    SupportTest::SetUp();
    if (HasFatalFailure()) return;
    for (const char* path :
         {"/tmp/canary", "/tmp/KMPIPE.old", "/tmp/KMNOTIPIPE2", "/tmp/TovalinTray-0/lock",
          "/tmp/TovalinTray-0/helpers/open", "/tmp/tovalinupdate.app/Contents/Info.plist",
          "/tmp/runtime/other/lock", "/tmp/home/canary", "/tmp/home/Desktop/canary",
          "/tmp/home/.config/canary", "/tmp/home/.config/Tovalin.conf", "/tmp/home/.cache/canary",
          "/tmp/home/.local/share/canary", "/tmp/home/.local/share/Tovalin.bak/Tovalin_2024_01_01.dat",
          "/tmp/home/.local/state/Tovalin/Tovalin1.crash", "/tmp/home/.local/share/Tovalin/notes.txt",
          "/tmp/home/.local/share/Tovalin/NOTES.DAT"})
      plant(path);
    // As the agent creates it.
    fs::permissions(ownFolder, fs::perms::owner_all);
    // Links with the names of past usage files, beside a real one that is uploaded.
    fs::create_symlink("/tmp/home/canary", ownFolder + "/Tovalin_2024_01_01.dat");
    fs::create_symlink("/tmp/home/Desktop", ownFolder + "/Tovalin_2024_01_02.dat");
    std::ofstream(ownFolder + "/Tovalin_2024_01_03.dat") << "a real day";
  }
  void TearDown() override {
    SupportTest::TearDown();
    fs::remove_all(updaterCopy);
  }

  // Creates a link of this name in the agent's folder, to a file of the user with this text.
  static void plantLink(const std::string& name, const std::string& text) {
    const std::string target = "/tmp/home/linked/" + name;
    fs::create_directories("/tmp/home/linked");
    std::ofstream(target) << text;
    fs::create_symlink(target, ownFolder + "/" + name);
  }
  // Runs a session with a record and an upload.
  void runShortSession() {
    launchInPanel();
    send(test_support::deviceMessage());
    ASSERT_TRUE(waitUntil([] { return !fs::exists(ownFolder + "/Tovalin_2024_01_03.dat"); }));
    choose("Quit Tovalin");
    ASSERT_EQ(endOfAgent(), ExitStatus{.code = 0});
  }
  [[nodiscard]] std::string sentBodies() const {
    std::string all;
    for (const auto& request : server_->requests()) all += request.target + "\n" + request.body + "\n";
    return all;
  }

  // Creates a folder at the path of the updater's copy; a link in it leads to a file of the user.
  static void plantUpdaterCopy(uid_t owner, mode_t mode) {
    fs::remove_all(updaterCopy);
    fs::create_directories(updaterCopy + "/Contents");
    fs::create_symlink("/tmp/home/canary", updaterCopy + "/Contents/Info.plist");
    for (const std::string& folder : {updaterCopy, updaterCopy + "/Contents"}) {
      ASSERT_EQ(::chown(folder.c_str(), owner, owner), 0);
      ASSERT_EQ(::chmod(folder.c_str(), mode), 0);
    }
  }
  void pressUpdate() {
    launchAndOpen();
    timeline_.clear();
    clickAt(updateMiddle);
    ASSERT_TRUE(waitForClickBeacon("updatebtn"));
  }
  // Presses the button and expects that the agent neither copies nor opens the updater and keeps running.
  void expectNoUpdate() {
    const std::string before = stateOf("/tmp/home/canary");
    pressUpdate();
    ASSERT_TRUE(
        waitForText("log 3: updater's folder belongs to or is writable by other users : " + updaterCopy));
    expectNothingRun();
    EXPECT_EQ(count("log 3: updater's folder"), 1);
    EXPECT_EQ(stateOf("/tmp/home/canary"), before);
    closeWindow();
    terminateAgent();
  }
};

TEST_F(UntouchedFiles, SessionChangesOnlyOwnFiles) {
  const Snapshot before = snapshot();
  launchInPanel();
  ASSERT_TRUE(server_->waitForRequests("POST", 1));
  ASSERT_TRUE(waitUntil([] { return !fs::exists(ownFolder + "/Tovalin_2024_01_03.dat"); }));
  EXPECT_TRUE(fs::is_symlink(ownFolder + "/Tovalin_2024_01_01.dat"));
  send(test_support::deviceMessage());
  ASSERT_TRUE(waitUntil([] { return ownRecordsLike("\x04\x13") == 1; }));
  send("-non");
  ASSERT_TRUE(shows(isAccessNotice));
  send("-noff");
  ASSERT_TRUE(hides(isAccessNotice));
  choose("Automount Off");
  ASSERT_TRUE(host_.waitForEvent("clicked Automount Off"));
  openWindow();
  closeWindow();
  choose("Quit Tovalin");
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0});
  EXPECT_THAT(differences(before, snapshot()), testing::IsEmpty());
  EXPECT_EQ(ownRecordsLike(quitRecord), 2);
  EXPECT_THAT(sentBodies(), testing::HasSubstr("a real day"));
  EXPECT_THAT(sentBodies(), testing::Not(testing::HasSubstr("canary")));
}

TEST_F(UntouchedFiles, LinkAtIdentityIsNeitherReadNorWritten) {
  const std::string secret = "a secret as long as an identity, 36.";
  ASSERT_EQ(secret.size(), 36U);
  for (const std::string& text : {secret, "another length"s, ""s}) {
    for (const char* folder : {"/tmp/home/linked", ownFolder.c_str()}) fs::remove_all(folder);
    fs::create_directories(ownFolder);
    fs::permissions(ownFolder, fs::perms::owner_all);
    std::ofstream(ownFolder + "/Tovalin_2024_01_03.dat") << "a real day";
    plantLink("TovalinUUID.txt", text);
    const Snapshot before = snapshot();
    runShortSession();
    EXPECT_THAT(differences(before, snapshot()), testing::IsEmpty());
    EXPECT_THAT(ownRecords(), testing::Not(testing::HasSubstr(secret)));
    host_.clearEvents();
  }
}

TEST_F(UntouchedFiles, LinkAtServerOptionIsNeitherReadNorWritten) {
  for (const char* text : {"0", "more than one byte", ""}) {
    fs::remove_all("/tmp/home/linked");
    fs::remove(ownFolder + "/TovalinServerOption.txt");
    std::ofstream(ownFolder + "/Tovalin_2024_01_03.dat") << "a real day";
    plantLink("TovalinServerOption.txt", text);
    const Snapshot before = snapshot();
    // Uploads to the product server, whatever the link's target contains.
    runShortSession();
    EXPECT_THAT(differences(before, snapshot()), testing::IsEmpty());
    host_.clearEvents();
  }
}

TEST_F(UntouchedFiles, LinkAtUsageFileIsNeitherWrittenNorSent) {
  for (const char* text : {"the user's own", ""}) {
    fs::remove_all("/tmp/home/linked");
    const std::time_t now = std::time(nullptr);
    // The next day's file too, in case midnight passes.
    for (const std::time_t day : {now, now + 86400}) {
      fs::remove(ownFolder + "/" + dayFileName(day));
      plantLink(dayFileName(day), text);
    }
    std::ofstream(ownFolder + "/Tovalin_2024_01_03.dat") << "a real day";
    const Snapshot before = snapshot();
    runShortSession();
    EXPECT_THAT(differences(before, snapshot()), testing::IsEmpty());
    EXPECT_THAT(sentBodies(), testing::Not(testing::HasSubstr("the user's own")));
    host_.clearEvents();
  }
}

TEST_F(UntouchedFiles, OtherUsersFolderAtUpdaterCopyIsNeitherFilledNorOpened) {
  plantUpdaterCopy(otherUser, 0755);
  expectNoUpdate();
}

TEST_F(UntouchedFiles, SharedFolderAtUpdaterCopyIsNeitherFilledNorOpened) {
  plantUpdaterCopy(::getuid(), 0775);
  expectNoUpdate();
  plantUpdaterCopy(::getuid(), 0757);
  host_.clearEvents();
  expectNoUpdate();
}

TEST_F(UntouchedFiles, LinkAtUpdaterCopyIsNeitherFilledNorOpened) {
  fs::remove_all(updaterCopy);
  fs::create_symlink("/tmp/home/Desktop", updaterCopy);
  expectNoUpdate();
}

TEST_F(UntouchedFiles, OwnFolderFromLastUpdateIsReused) {
  pressUpdate();
  ASSERT_TRUE(waitForText("run: open " + updaterCopy));
  EXPECT_EQ(contentsOf(updaterCopy + "/Contents/Info.plist"),
            contentsOf(bundle_ + "/Contents/Resources/tovalinupdate.app/Contents/Info.plist"));
}

TEST_F(UntouchedFiles, UpdaterCopyFolderIsPrivate) {
  fs::remove_all(updaterCopy);
  pressUpdate();
  ASSERT_TRUE(waitForText("run: open " + updaterCopy));
  EXPECT_EQ(fs::status(updaterCopy).permissions(), fs::perms::owner_all);
  EXPECT_TRUE(fs::exists(updaterCopy + "/Contents/Info.plist"));
}

TEST_F(UntouchedFiles, LinkAtRuntimeFileIsNotFollowed) {
  fs::remove_all("/tmp/runtime/TovalinTray");
  fs::create_directories("/tmp/elsewhere/helpers");
  plant("/tmp/elsewhere/helpers/open");
  plant("/tmp/elsewhere/lock");
  fs::permissions("/tmp/elsewhere", fs::perms::owner_all);
  fs::create_symlink("/tmp/elsewhere", "/tmp/runtime/TovalinTray");
  const Snapshot before = snapshot();
  startAgent();
  ASSERT_TRUE(waitForText("log 3: the agent's helpers are not available after the removal of its bundle"));
  ASSERT_TRUE(waitForText("pipe: -ton"));
  terminateAgent();
  EXPECT_THAT(differences(before, snapshot()), testing::IsEmpty());
  fs::remove("/tmp/runtime/TovalinTray");
}

TEST_F(UntouchedFiles, LinkAtLockOrHelpersFolderIsNotFollowed) {
  fs::remove_all("/tmp/runtime/TovalinTray");
  fs::create_directories("/tmp/runtime/TovalinTray");
  fs::permissions("/tmp/runtime/TovalinTray", fs::perms::owner_all);
  plant("/tmp/elsewhere/helpers/canary");
  fs::create_symlink("/tmp/elsewhere/lock", "/tmp/runtime/TovalinTray/lock");
  fs::create_symlink("/tmp/elsewhere/helpers", "/tmp/runtime/TovalinTray/helpers");
  const Snapshot before = snapshot();
  launchAgent();
  terminateAgent();
  EXPECT_THAT(differences(before, snapshot()), testing::IsEmpty());
  fs::remove_all("/tmp/runtime/TovalinTray");
}

}  // namespace

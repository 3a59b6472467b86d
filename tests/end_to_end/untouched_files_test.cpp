#include <gmock/gmock.h>
#include <sys/stat.h>

#include <fstream>
#include <map>

#include "tests/end_to_end/support_fixture.h"
#include "tests/support/file_contents.h"

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using test_support::ExitStatus;
using test_support::waitUntil;

constexpr const char* home = "/tmp/home";
const std::string ownFolder = std::string(home) + "/.local/share/Tovalin";

// All of a file that a program could change.
std::string stateOf(const fs::path& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return "gone";
  std::string state = std::to_string(status.st_ino) + " mode " + std::to_string(status.st_mode) + " owner " +
                      std::to_string(status.st_uid);
  // A folder's own time moves with the agent's files in it.
  if (S_ISDIR(status.st_mode)) return state;
  state += " links " + std::to_string(status.st_nlink) + " changed " + std::to_string(status.st_mtim.tv_sec) +
           "." + std::to_string(status.st_mtim.tv_nsec);
  if (S_ISLNK(status.st_mode)) return state + " to " + fs::read_symlink(path).string();
  state += " size " + std::to_string(status.st_size);
  // Programs are told by their time and size alone.
  if (!S_ISREG(status.st_mode) || status.st_size > 1 << 16) return state;
  return state + " holds " + test_support::contentsOf(path);
}

// The agent's own files, and what the test itself keeps there.
bool isLeftOut(const std::string& path) {
  const auto isBelow = [&](const std::string& top) { return path == top || path.starts_with(top + "/"); };
  return path == pipePath || path == "/tmp/KMPIPE" || path == "/tmp/timeline.sock" ||
         path.starts_with(ownFolder + "/TovalinUUID") ||
         path.starts_with(ownFolder + "/TovalinServerOption") || path.starts_with(ownFolder + "/Tovalin_") ||
         isBelow("/tmp/runtime/TovalinTray");
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
    plant(ownFolder + "/Tovalin_2024_01_03.dat");
    // These are neither followed nor sent.
    fs::create_symlink("/tmp/home/canary", ownFolder + "/Tovalin_2024_01_01.dat");
    fs::create_symlink("/tmp/home/Desktop", ownFolder + "/Tovalin_2024_01_02.dat");
  }
};

TEST_F(UntouchedFiles, AWholeLifeChangesNothingButTheAgentsOwnFiles) {
  const Snapshot before = snapshot();
  launchInPanel();
  ASSERT_TRUE(server_->waitForRequests("POST", 1));
  ASSERT_TRUE(waitUntil([] { return !fs::exists(ownFolder + "/Tovalin_2024_01_03.dat"); }));
  EXPECT_TRUE(fs::is_symlink(ownFolder + "/Tovalin_2024_01_01.dat"));
  send("-ncdat\0\0\0\0\x03\0\0\0My Pad\0"s);
  ASSERT_TRUE(waitUntil([] { return recordsLike("\x04\x13") == 1; }));
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
  EXPECT_EQ(recordsLike(quitRecord), 2);
}

TEST_F(UntouchedFiles, ALinkInPlaceOfAnOwnFileOfTheRuntimeFolderIsNotFollowed) {
  fs::remove_all("/tmp/runtime/TovalinTray");
  fs::create_directories("/tmp/elsewhere/helpers");
  plant("/tmp/elsewhere/helpers/open");
  plant("/tmp/elsewhere/lock");
  fs::permissions("/tmp/elsewhere", fs::perms::owner_all);
  fs::create_symlink("/tmp/elsewhere", "/tmp/runtime/TovalinTray");
  const Snapshot before = snapshot();
  startAgent();
  ASSERT_TRUE(waitForText("log 3: outside commands run without the agent's helpers"));
  ASSERT_TRUE(waitForText("pipe: -ton"));
  terminateAgent();
  EXPECT_THAT(differences(before, snapshot()), testing::IsEmpty());
  fs::remove("/tmp/runtime/TovalinTray");
}

TEST_F(UntouchedFiles, ALinkInPlaceOfTheLockOrTheHelpersFolderIsNotFollowed) {
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

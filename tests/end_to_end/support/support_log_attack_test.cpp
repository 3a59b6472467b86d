#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/end_to_end/support/support_log_fixture.h"
#include "tests/harness/processes/file_contents.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

constexpr uid_t anotherUser = 65534;
constexpr std::uintmax_t maxSourceSize = 20'000'000;

// A crash folder that every user may write to. It has no sticky bit, so that fs.protected_symlinks does not
// apply and the agent must protect itself.
class SupportLogAttack : public SupportLog {
 protected:
  void SetUp() override {
    SupportLog::SetUp();
    if (HasFatalFailure()) return;
    fs::permissions("/var/crash", fs::perms::all);
  }
  static void changeOwner(const std::string& path) {
    ASSERT_EQ(::lchown(path.c_str(), anotherUser, anotherUser), 0);
  }
  static void makeFifo(const std::string& path) {
    fs::create_directories(fs::path(path).parent_path());
    ASSERT_EQ(::mkfifo(path.c_str(), 0666), 0);
    ASSERT_EQ(::chmod(path.c_str(), 0666), 0);
  }
  static std::string collectedSystemLog() {
    return folders().empty() ? std::string() : (folders()[0] / "system.log").string();
  }
  // Waits for the end of a collection in which one command may take up to its limit.
  void collectPatiently() {
    ASSERT_NO_FATAL_FAILURE(openFirstSheet());
    const auto question = messageOfSheet();
    clickAt(sheetsDefault);
    ASSERT_TRUE(test_support::waitUntil(
        [&] { return !(messageOfSheet() == question) && colourOf(bareSpot).red < 200; },
        std::chrono::seconds(60)));
  }
};

TEST_F(SupportLogAttack, FifoInSharedCrashFolderIsSkipped) {
  makeFifo("/var/crash/xTovalin.crash");
  write("/var/crash/_usr_lib_TovalinTray.0.crash");
  launchAndOpen();
  collect();
  EXPECT_THAT(archived(), UnorderedElementsAre("system.log", "_usr_lib_TovalinTray.0.crash"));
}

TEST_F(SupportLogAttack, SigtermIsHandledWithFifosAmongSources) {
  for (const char* path : {"/var/crash/xTovalin.crash", "/var/log/Tovalin.log",
                           "/tmp/home/.local/state/Tovalin/Tovalin_1.crash"})
    makeFifo(path);
  launchAndOpen();
  openFirstSheet();
  clickAt(sheetsDefault);
  ASSERT_TRUE(test_support::waitUntil([] { return !folders().empty(); }));
  terminateAgent();
}

TEST_F(SupportLogAttack, LinkInSharedCrashFolderIsNotFollowed) {
  write("/tmp/home/secret");
  fs::create_symlink("/tmp/home/secret", "/var/crash/xTovalin.crash");
  changeOwner("/var/crash/xTovalin.crash");
  launchAndOpen();
  collect();
  EXPECT_THAT(archived(), ElementsAre("system.log"));
}

TEST_F(SupportLogAttack, HardLinkInSharedCrashFolderIsSkipped) {
  write("/var/tmp_secret");
  fs::create_hard_link("/var/tmp_secret", "/var/crash/xTovalin.crash");
  launchAndOpen();
  collect();
  EXPECT_THAT(archived(), ElementsAre("system.log"));
  fs::remove("/var/tmp_secret");
}

TEST_F(SupportLogAttack, OtherUsersFileInSharedCrashFolderIsSkipped) {
  write("/var/crash/xTovalin.crash");
  changeOwner("/var/crash/xTovalin.crash");
  launchAndOpen();
  collect();
  EXPECT_THAT(archived(), ElementsAre("system.log"));
}

TEST_F(SupportLogAttack, LongJournalIsTruncatedToNewestPart) {
  placeScript("journalctl", "yes 'an older entry' | head -c 60000000; echo 'the last entry'");
  launchAndOpen();
  collect();
  EXPECT_EQ(fs::file_size(collectedSystemLog()), maxSourceSize);
  EXPECT_TRUE(test_support::contentsOf(collectedSystemLog()).ends_with("the last entry\n"));
}

TEST_F(SupportLogAttack, LongSyslogIsTruncatedToNewestPart) {
  placeScript("journalctl", "exit 1");
  write("/var/log/syslog", std::string(30'000'000, 'x') + "the last entry\n");
  launchAndOpen();
  collect();
  EXPECT_EQ(fs::file_size(collectedSystemLog()), maxSourceSize);
  EXPECT_TRUE(test_support::contentsOf(collectedSystemLog()).ends_with("the last entry\n"));
}

TEST_F(SupportLogAttack, EndlessJournalIsCutOffAtTimeLimit) {
  placeScript("journalctl", "echo 'an entry'; exec sleep 1000");
  launchAndOpen();
  collectPatiently();
  EXPECT_THAT(archived(), ElementsAre("system.log"));
  EXPECT_EQ(test_support::contentsOf(collectedSystemLog()), "an entry\n");
}

// A long journal exceeds the time limit, and journalctl prints the oldest entries first.
TEST_F(SupportLogAttack, NewestEntriesOfSlowJournalAreKept) {
  placeScript("journalctl",
              "while [ \"$1\" != -n ]; do shift; done\n"
              "[ \"$2\" -lt 200000 ] || { echo 'an old entry'; exec sleep 1000; }\n"
              "echo \"the last of $2 entries\"");
  launchAndOpen();
  collectPatiently();
  EXPECT_EQ(test_support::contentsOf(collectedSystemLog()), "the last of 50000 entries\n");
}

TEST_F(SupportLogAttack, HangingCommandIsKilledAndNextOnesRun) {
  placeScript("mkdir", "sleep 1000; exec /bin/mkdir \"$@\"");
  launchAndOpen();
  for (const auto& name : namesToCome()) fs::create_directories(name);
  collectPatiently();
  EXPECT_THAT(archived(), ElementsAre("system.log"));
  EXPECT_EQ(count("log 3: log collection : a command was killed after 10 s : mkdir -m 700 /tmp/tovalinlog_"),
            1);
  fs::remove(commandFolder + std::string("mkdir"));
}

TEST_F(SupportLogAttack, UnusualFileNamesArePacked) {
  const std::string folder = "/tmp/home/.local/state/Tovalin/";
  for (const char* name : {"Tovalin -rf.crash", "Tovalin [1]*?.crash", "Tovalin@'\"$x`.crash"})
    write(folder + name);
  launchAndOpen();
  collect();
  EXPECT_THAT(archived(), UnorderedElementsAre("system.log", "Tovalin -rf.crash", "Tovalin [1]*?.crash",
                                               "Tovalin@'\"$x`.crash"));
}

TEST_F(SupportLogAttack, JournalIsPlainTextRegardlessOfEnvironment) {
  environment_["SYSTEMD_COLORS"] = "1";
  environment_["SYSTEMD_URLIFY"] = "1";
  placeScript("journalctl", "echo \"$SYSTEMD_COLORS $SYSTEMD_URLIFY $*\"");
  launchAndOpen();
  collect();
  EXPECT_EQ(test_support::contentsOf(collectedSystemLog()), "0 0 -q -b --no-pager -n 200000\n");
}

TEST_F(SupportLogAttack, FifoAtCollectionFolderIsLeftAlone) {
  launchAndOpen();
  const auto names = namesToCome();
  for (const auto& name : names) makeFifo(name);
  collect();
  for (const auto& name : names) EXPECT_TRUE(fs::is_fifo(name));
  EXPECT_THAT(archives(), IsEmpty());
}

TEST_F(SupportLogAttack, LinksAndFifosInOwnFolderAreSkipped) {
  write("/tmp/home/secret", "the text of the link's target");
  launchAndOpen();
  const auto names = namesToCome();
  for (const auto& name : names) {
    fs::create_directories(name);
    fs::create_symlink("/tmp/home/secret", name + "/system.log");
    fs::create_symlink("/tmp/home/secret", name + "/planted.txt");
    makeFifo(name + "/fifo.txt");
  }
  collect();
  EXPECT_EQ(test_support::contentsOf("/tmp/home/secret"), "the text of the link's target");
  ASSERT_THAT(archives(), SizeIs(1));
  const std::string content = runOnDisplay({"unzip", "-p", archives()[0].string()});
  EXPECT_THAT(content, testing::HasSubstr(systemEntry));
  EXPECT_THAT(content, testing::Not(testing::HasSubstr("the text of the link's target")));
  EXPECT_THAT(archived(), UnorderedElementsAre("planted.txt", "system.log"));
}

TEST_F(SupportLogAttack, FifoAtArchiveIsReplaced) {
  launchAndOpen();
  for (const auto& name : namesToCome())
    makeFifo("/tmp/home/Desktop/" + fs::path(name).filename().string() + ".zip");
  collect();
  EXPECT_EQ(std::ranges::count_if(archives(), [](const auto& path) { return fs::is_regular_file(path); }), 1);
}

TEST_F(SupportLogAttack, LinkAtArchiveIsReplacedAndTargetUnchanged) {
  write("/tmp/home/secret", "secret");
  launchAndOpen();
  fs::create_directories("/tmp/home/Desktop");
  for (const auto& name : namesToCome())
    fs::create_symlink("/tmp/home/secret",
                       "/tmp/home/Desktop/" + fs::path(name).filename().string() + ".zip");
  collect();
  EXPECT_EQ(test_support::contentsOf("/tmp/home/secret"), "secret");
  EXPECT_EQ(std::ranges::count_if(archives(), [](const auto& path) { return !fs::is_symlink(path); }), 1);
}

TEST_F(SupportLogAttack, ZipOptionsInEnvironmentAreIgnored) {
  for (const char* name : {"ZIPOPT", "ZIP"}) {
    environment_[name] = "-m";
    launchAndOpen();
    collect();
    EXPECT_TRUE(fs::exists(collectedSystemLog())) << name;
    terminateAgent();
    environment_[name] = std::nullopt;
    for (const auto& path : folders()) fs::remove_all(path);
  }
}

TEST_F(SupportLogAttack, RelativeDesktopFolderIsReplacedByDefault) {
  write("/tmp/home/.config/user-dirs.dirs", "XDG_DESKTOP_DIR=\"-odd/folder\"\n");
  launchAndOpen();
  collect();
  EXPECT_THAT(archived(), ElementsAre("system.log"));
}

}  // namespace

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <ctime>
#include <fstream>

#include "tests/end_to_end/support_fixture.h"

namespace {

namespace fs = std::filesystem;
using test_support::waitUntil;
using testing::ElementsAre;
using testing::SizeIs;
using testing::UnorderedElementsAre;

constexpr const char* commands = "/tmp/outside commands/";
constexpr const char* systemEntry = "an entry of the system";

std::vector<fs::path> inFolder(const fs::path& folder, const std::string& beginning) {
  std::vector<fs::path> found;
  if (!fs::exists(folder)) return found;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().filename().string().starts_with(beginning)) found.push_back(entry.path());
  }
  return found;
}

fs::perms permissions(const fs::path& path) {
  return fs::status(path).permissions();
}

// The collection of the logs, in a system whose logs are the test's own.
class SupportLog : public SupportTest {
 protected:
  // A /var of this program's own mount namespace: what is there, and empty folders for logs and crashes.
  static void SetUpTestSuite() {
    ASSERT_STREQ(std::getenv("HOME"), "/tmp/home") << "to be run in the sandbox alone";
    const fs::path own = "/tmp/var";
    fs::create_directory(own);
    ASSERT_EQ(::mount("tmpfs", own.c_str(), "tmpfs", 0, nullptr), 0);
    for (const char* empty : {"log", "crash"}) fs::create_directory(own / empty);
    for (const auto& entry : fs::directory_iterator("/var")) {
      const fs::path place = own / entry.path().filename();
      if (entry.is_symlink()) {
        fs::copy_symlink(entry.path(), place);
      } else if (entry.is_directory() && fs::create_directory(place)) {
        ASSERT_EQ(::mount(entry.path().c_str(), place.c_str(), nullptr, MS_BIND | MS_REC, nullptr), 0);
      }
    }
    ASSERT_EQ(::mount(own.c_str(), "/var", nullptr, MS_BIND | MS_REC, nullptr), 0);
    ASSERT_EQ(::umount2(own.c_str(), MNT_DETACH), 0);
    fs::remove(own);
  }

  void SetUp() override {
    for (const auto& path : inFolder("/tmp", "tovalinlog_")) fs::remove_all(path);
    for (const char* path : {"/tmp/home/Desktop", "/tmp/home/.config"}) fs::remove_all(path);
    for (const char* folder : {"/var/log", "/var/crash"}) {
      for (const auto& path : inFolder(folder, "")) fs::remove_all(path);
    }
    SupportTest::SetUp();
    placeScript("journalctl", std::string("echo '") + systemEntry + "'");
    fs::remove(commands + std::string("zip"));
  }

  static void placeScript(const std::string& name, const std::string& text) {
    const std::string path = commands + name;
    std::ofstream(path) << "#!/bin/sh\n" << text << '\n';
    fs::permissions(path, fs::perms::owner_all);
  }
  static void write(const fs::path& path, const std::string& text = "text") {
    fs::create_directories(path.parent_path());
    std::ofstream(path) << text;
  }

  // What tells one sheet from the other: the message, on the sheet's upper part.
  [[nodiscard]] test_support::XPicture message() const { return pictureOfPart({100, 180}, 300, 55); }

  void openFirstSheet() {
    clickAt(logMiddle);
    ASSERT_TRUE(sheetIsUp());
  }
  // Returns when the second sheet is up.
  void collect() {
    openFirstSheet();
    const auto question = message();
    press("Return");
    waitForSheetAfter(question);
  }
  void waitForSheetAfter(const test_support::XPicture& question) {
    ASSERT_TRUE(waitUntil([&] { return !(message() == question) && colourOf(bareSpot).red < 200; }));
  }

  static std::vector<fs::path> folders() { return inFolder("/tmp", "tovalinlog_"); }
  static std::vector<fs::path> archives(const fs::path& desktop = "/tmp/home/Desktop") {
    return inFolder(desktop, "tovalinlog_");
  }
  // The names of what the only archive holds, without their folder.
  std::vector<std::string> archived(const fs::path& desktop = "/tmp/home/Desktop") {
    EXPECT_THAT(archives(desktop), SizeIs(1));
    if (archives(desktop).empty()) return {};
    std::vector<std::string> names;
    std::istringstream list(runOnDisplay({"zip", "-sf", archives(desktop)[0].string()}));
    for (std::string line; std::getline(list, line);) {
      const std::size_t slash = line.rfind('/');
      if (slash != std::string::npos && line.find("tmp/tovalinlog_") != std::string::npos)
        names.push_back(line.substr(slash + 1));
    }
    return names;
  }
  // The folders that the collection would use if it began within the next half minute.
  static std::vector<std::string> namesToCome() {
    std::vector<std::string> names;
    for (std::time_t time = std::time(nullptr), end = time + 30; time < end; ++time) {
      std::tm local{};
      ::localtime_r(&time, &local);
      char text[64];
      std::strftime(text, sizeof text, "/tmp/tovalinlog_%Y-%m-%dT%H-%M-%S", &local);
      names.emplace_back(text);
    }
    return names;
  }
  static int foldersWithLogs(const std::vector<std::string>& names) {
    return static_cast<int>(
        std::ranges::count_if(names, [](const auto& name) { return fs::exists(name + "/system.log"); }));
  }
};

TEST_F(SupportLog, TheButtonTellsSoAndSendsItsBeaconOnce) {
  launchAndOpen();
  timeline_.clear();
  openFirstSheet();
  EXPECT_TRUE(waitForClickBeacon("logbtn"));
  EXPECT_EQ(beaconsOf("logbtn"), 1);
  EXPECT_THAT(texts(), ElementsAre("log 6: -[nimbatrayAppDelegate logBtnClick:] Log button click!"));
}

TEST_F(SupportLog, CancelLeavesNothingAndTheButtonEnabled) {
  launchAndOpen();
  openFirstSheet();
  press("Escape");
  ASSERT_TRUE(sheetIsGone());
  openFirstSheet();
  press("Tab");
  press("Return");
  ASSERT_TRUE(sheetIsGone());
  EXPECT_THAT(folders(), ElementsAre());
  EXPECT_FALSE(fs::exists("/tmp/home/Desktop"));
  openFirstSheet();
}

TEST_F(SupportLog, ContinuePacksAllLogsForTheirOwnerAlone) {
  write("/var/log/Tovalin.log");
  write("/var/log/TovalinHelper.log");
  write("/var/log/other.log");
  write("/tmp/home/.local/state/Tovalin/Tovalin_1.crash");
  write("/var/crash/_usr_lib_TovalinTray.1000.crash");
  write("/var/crash/_usr_bin_other.1000.crash");
  launchAndOpen();
  collect();
  EXPECT_THAT(archived(), UnorderedElementsAre("Tovalin.log", "TovalinHelper.log", "system.log",
                                               "Tovalin_1.crash", "_usr_lib_TovalinTray.1000.crash"));
  ASSERT_THAT(folders(), SizeIs(1));
  EXPECT_EQ(folders()[0].filename().string() + ".zip", archives()[0].filename().string());
  EXPECT_EQ(permissions(folders()[0]), fs::perms::owner_all);
  EXPECT_EQ(permissions(archives()[0]), fs::perms::owner_read | fs::perms::owner_write);
  for (const auto& log : inFolder(folders()[0], ""))
    EXPECT_EQ(permissions(log) & (fs::perms::group_all | fs::perms::others_all), fs::perms::none) << log;
}

TEST_F(SupportLog, WithoutLogsOfItsOwnTheArchiveHoldsTheSystemsAlone) {
  launchAndOpen();
  collect();
  EXPECT_THAT(archived(), ElementsAre("system.log"));
  std::ifstream log(folders()[0] / "system.log");
  std::string line;
  std::getline(log, line);
  EXPECT_EQ(line, systemEntry);
}

TEST_F(SupportLog, WithoutAJournalTheSyslogTakesItsPlace) {
  placeScript("journalctl", "exit 1");
  write("/var/log/syslog", "from the file");
  launchAndOpen();
  collect();
  EXPECT_THAT(archived(), ElementsAre("system.log"));
  std::string line;
  std::getline(std::ifstream(folders()[0] / "system.log"), line);
  EXPECT_EQ(line, "from the file");
}

TEST_F(SupportLog, WithoutAnyLogTheSequenceGoesOnToItsEnd) {
  placeScript("journalctl", "exit 1");
  launchAndOpen();
  collect();
  press("Escape");
  EXPECT_TRUE(sheetIsGone());
  ASSERT_THAT(folders(), SizeIs(1));
  EXPECT_EQ(fs::file_size(folders()[0] / "system.log"), 0U);
}

TEST_F(SupportLog, CloseOpensNothingAndAnotherCollectionCanBegin) {
  launchAndOpen();
  timeline_.clear();
  collect();
  press("Return");
  ASSERT_TRUE(sheetIsGone());
  openFirstSheet();
  EXPECT_EQ(count("run: "), 0);
}

TEST_F(SupportLog, ContactUsOpensTheContactPageOnce) {
  launchAndOpen();
  timeline_.clear();
  collect();
  press("Tab");
  press("Return");
  ASSERT_TRUE(waitForText("run: open"));
  ASSERT_TRUE(sheetIsGone());
  EXPECT_THAT(runs(), ElementsAre("run: open " + server_->origin() + "/contact/tovalin/"));
}

TEST_F(SupportLog, TheKeyboardIsAtTheButtonAgainAfterTheCollection) {
  launchAndOpen();
  for (const char* key : {"Tab", "Tab", "Return"}) press(key);
  ASSERT_TRUE(sheetIsUp());
  const auto question = message();
  press("Return");
  waitForSheetAfter(question);
  press("Return");
  ASSERT_TRUE(sheetIsGone());
  timeline_.clear();
  press("Return");
  EXPECT_TRUE(waitForText("log 6: -[nimbatrayAppDelegate logBtnClick:]"));
  EXPECT_TRUE(sheetIsUp());
  EXPECT_THAT(runs(), ElementsAre());
}

TEST_F(SupportLog, TheSheetsButtonsTakeClicks) {
  launchAndOpen();
  timeline_.clear();
  openFirstSheet();
  const auto question = message();
  clickAt({350, 239 - 76});
  waitForSheetAfter(question);
  clickAt({242, 239 - 76});
  EXPECT_TRUE(waitForText("run: open " + server_->origin() + "/contact/tovalin/"));
  EXPECT_TRUE(sheetIsGone());
}

TEST_F(SupportLog, AHomeWithBlanksAndQuotesGetsItsArchive) {
  const std::string home = "/tmp/home/it's a \"home\" $HOME";
  fs::create_directories(home);
  environment_["HOME"] = home;
  write(home + "/.local/state/Tovalin/Tovalin_1.crash");
  launchAndOpen();
  collect();
  EXPECT_THAT(archived(home + "/Desktop"), UnorderedElementsAre("system.log", "Tovalin_1.crash"));
}

TEST_F(SupportLog, ALocalisedDesktopGetsTheArchive) {
  write("/tmp/home/.config/user-dirs.dirs", "XDG_DESKTOP_DIR=\"$HOME/Mein Schreibtisch\"\n");
  launchAndOpen();
  collect();
  EXPECT_THAT(archived("/tmp/home/Mein Schreibtisch"), ElementsAre("system.log"));
  EXPECT_FALSE(fs::exists("/tmp/home/Desktop"));
}

TEST_F(SupportLog, WithoutZipTheSequenceGoesOnToItsEnd) {
  placeScript("zip", "echo zip: not found >&2; exit 127");
  launchAndOpen();
  collect();
  EXPECT_THAT(archives(), ElementsAre());
  ASSERT_THAT(folders(), SizeIs(1));
  press("Return");
  EXPECT_TRUE(sheetIsGone());
}

TEST_F(SupportLog, AFullDiskLeavesNoArchiveAndTheSequenceGoesOn) {
  const char* const desktop = "/tmp/home/Desktop";
  fs::create_directories(desktop);
  ASSERT_EQ(::mount("tmpfs", desktop, "tmpfs", 0, "size=4k"), 0);
  write(desktop + std::string("/full"), std::string(4096, 'x'));
  launchAndOpen();
  collect();
  press("Return");
  EXPECT_TRUE(sheetIsGone());
  EXPECT_THAT(archives(), ElementsAre());
  EXPECT_EQ(::umount2(desktop, MNT_DETACH), 0);
  ASSERT_THAT(folders(), SizeIs(1));
  EXPECT_TRUE(fs::exists(folders()[0] / "system.log"));
}

TEST_F(SupportLog, AFullFolderForTemporaryFilesLeavesNoCopyAndTheSequenceGoesOn) {
  launchAndOpen();
  std::ofstream("/tmp/full").close();
  const struct statvfs room = [] {
    struct statvfs found {};
    EXPECT_EQ(::statvfs("/tmp", &found), 0);
    return found;
  }();
  {
    const test_support::FileDescriptor full(::open("/tmp/full", O_WRONLY | O_CLOEXEC));
    ASSERT_EQ(::posix_fallocate(full.get(), 0, static_cast<off_t>(room.f_bavail * room.f_frsize)), 0);
  }
  std::ofstream("/tmp/one more") << "text";
  EXPECT_EQ(fs::file_size("/tmp/one more"), 0U) << "there is still room";
  collect();
  press("Return");
  EXPECT_TRUE(sheetIsGone());
  for (const auto& folder : folders())
    EXPECT_TRUE(!fs::exists(folder / "system.log") || fs::is_empty(folder / "system.log"));
  EXPECT_THAT(archives(), ElementsAre());
  fs::remove("/tmp/full");
  fs::remove("/tmp/one more");
  expectNothingRun();
}

TEST_F(SupportLog, AFolderOfItsUsersThatIsThereAlreadyIsFilled) {
  launchAndOpen();
  const auto names = namesToCome();
  for (const auto& name : names) {
    write(name + "/earlier.txt");
    fs::permissions(name, fs::perms::all);
  }
  collect();
  EXPECT_EQ(foldersWithLogs(names), 1);
  const auto filled =
      std::ranges::find_if(names, [](const auto& name) { return fs::exists(name + "/system.log"); });
  EXPECT_EQ(permissions(*filled), fs::perms::owner_all);
  EXPECT_THAT(archived(), UnorderedElementsAre("earlier.txt", "system.log"));
}

TEST_F(SupportLog, ALinkThatStandsInTheFoldersPlaceIsNotFollowed) {
  launchAndOpen();
  const auto names = namesToCome();
  fs::create_directories("/tmp/tovalinlog_elsewhere");
  for (const auto& name : names) fs::create_symlink("/tmp/tovalinlog_elsewhere", name);
  collect();
  EXPECT_TRUE(fs::is_empty("/tmp/tovalinlog_elsewhere"));
  EXPECT_THAT(archives(), ElementsAre());
}

TEST_F(SupportLog, AFolderOfSomebodyElsesIsNotFilled) {
  launchAndOpen();
  const auto names = namesToCome();
  for (const auto& name : names) {
    fs::create_directories(name);
    fs::permissions(name, fs::perms::all);
    if (::chown(name.c_str(), 65534, 65534) != 0) GTEST_SKIP() << "only root can give a folder away";
  }
  collect();
  EXPECT_EQ(foldersWithLogs(names), 0);
  EXPECT_THAT(archives(), ElementsAre());
}

// What the user did in the meantime is served before the sheet that tells of the end, which then has no
// window.
TEST_F(SupportLog, ACloseRequestDuringTheCollectionClosesTheWindowAfterIt) {
  fs::copy_file(TOVALIN_RECORDER, commands + std::string("zip"), fs::copy_options::overwrite_existing);
  timeline_.hold("zip");
  launchAndOpen();
  openFirstSheet();
  press("Return");
  ASSERT_TRUE(waitForText("run: zip"));
  test_support::deliverCloseRequest(display_.name(), window_.id);
  timeline_.release("zip");
  ASSERT_TRUE(windowGoes());
  openWindow();
  EXPECT_FALSE(colourOf(bareSpot).red < 200) << "an earlier window's sheet";
  closeWindow();
  terminateAgent();
}

TEST_F(SupportLog, TheSignalDuringTheCollectionIsServedAfterIt) {
  fs::copy_file(TOVALIN_RECORDER, commands + std::string("zip"), fs::copy_options::overwrite_existing);
  timeline_.hold("zip");
  launchAndOpen();
  openFirstSheet();
  press("Return");
  ASSERT_TRUE(waitForText("run: zip"));
  agent_.terminate();
  timeline_.release("zip");
  EXPECT_EQ(endOfAgent(), test_support::ExitStatus{.code = 0});
  EXPECT_EQ(count(killRun), 1);
}

}  // namespace

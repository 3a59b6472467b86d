#include <gmock/gmock.h>

#include <fstream>

#include "tests/end_to_end/support/support_log_fixture.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::SizeIs;
using testing::UnorderedElementsAre;

TEST_F(SupportLog, ButtonIsLoggedAndSendsOneBeacon) {
  launchAndOpen();
  timeline_.clear();
  openFirstSheet();
  EXPECT_TRUE(waitForClickBeacon("logbtn"));
  EXPECT_EQ(beaconsOf("logbtn"), 1);
  EXPECT_THAT(texts(), ElementsAre("log 6: -[nimbatrayAppDelegate logBtnClick:] Log button click!"));
}

TEST_F(SupportLog, CancelCreatesNothingAndKeepsButtonEnabled) {
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

TEST_F(SupportLog, ContinuePacksAllLogsReadableByOwnerOnly) {
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
  for (const auto& log : inFolder(folders()[0]))
    EXPECT_EQ(permissions(log) & (fs::perms::group_all | fs::perms::others_all), fs::perms::none) << log;
}

TEST_F(SupportLog, WithoutOwnLogsArchiveHoldsSystemLogs) {
  launchAndOpen();
  collect();
  EXPECT_THAT(archived(), ElementsAre("system.log"));
  std::ifstream log(folders()[0] / "system.log");
  std::string line;
  std::getline(log, line);
  EXPECT_EQ(line, systemEntry);
}

TEST_F(SupportLog, WithoutJournalSyslogIsPacked) {
  placeScript("journalctl", "exit 1");
  write("/var/log/syslog", "from the file");
  launchAndOpen();
  collect();
  EXPECT_THAT(archived(), ElementsAre("system.log"));
  std::string line;
  std::getline(std::ifstream(folders()[0] / "system.log"), line);
  EXPECT_EQ(line, "from the file");
}

TEST_F(SupportLog, WithoutAnyLogSequenceCompletes) {
  placeScript("journalctl", "exit 1");
  launchAndOpen();
  collect();
  press("Escape");
  EXPECT_TRUE(sheetIsGone());
  ASSERT_THAT(folders(), SizeIs(1));
  EXPECT_EQ(fs::file_size(folders()[0] / "system.log"), 0U);
}

TEST_F(SupportLog, CloseOpensNothingAndNextCollectionWorks) {
  launchAndOpen();
  timeline_.clear();
  collect();
  press("Return");
  ASSERT_TRUE(sheetIsGone());
  openFirstSheet();
  EXPECT_EQ(count("run: "), 0);
}

TEST_F(SupportLog, ContactUsOpensContactPageOnce) {
  launchAndOpen();
  timeline_.clear();
  collect();
  press("Tab");
  press("Return");
  ASSERT_TRUE(waitForText("run: open"));
  ASSERT_TRUE(sheetIsGone());
  EXPECT_THAT(runs(), ElementsAre("run: open " + server_->origin() + "/contact/tovalin/"));
}

TEST_F(SupportLog, FocusReturnsToButtonAfterCollection) {
  launchAndOpen();
  for (const char* key : {"Tab", "Tab", "Return"}) press(key);
  ASSERT_TRUE(sheetIsUp());
  const auto question = messageOfSheet();
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

TEST_F(SupportLog, SheetButtonsAcceptClicks) {
  launchAndOpen();
  timeline_.clear();
  openFirstSheet();
  const auto question = messageOfSheet();
  clickAt(sheetsDefault);
  waitForSheetAfter(question);
  clickAt({242, sheetsDefault.y});
  EXPECT_TRUE(waitForText("run: open " + server_->origin() + "/contact/tovalin/"));
  EXPECT_TRUE(sheetIsGone());
}

TEST_F(SupportLog, HomeWithBlanksAndQuotesGetsArchive) {
  const std::string home = "/tmp/home/it's a \"home\" $HOME";
  fs::create_directories(home);
  environment_["HOME"] = home;
  write(home + "/.local/state/Tovalin/Tovalin_1.crash");
  launchAndOpen();
  collect();
  EXPECT_THAT(archived(home + "/Desktop"), UnorderedElementsAre("system.log", "Tovalin_1.crash"));
}

TEST_F(SupportLog, LocalisedDesktopFolderGetsArchive) {
  write("/tmp/home/.config/user-dirs.dirs", "XDG_DESKTOP_DIR=\"$HOME/Mein Schreibtisch\"\n");
  launchAndOpen();
  collect();
  EXPECT_THAT(archived("/tmp/home/Mein Schreibtisch"), ElementsAre("system.log"));
  EXPECT_FALSE(fs::exists("/tmp/home/Desktop"));
}

}  // namespace

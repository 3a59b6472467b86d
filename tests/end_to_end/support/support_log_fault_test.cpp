#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>

#include "tests/end_to_end/support/support_log_fixture.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::SizeIs;
using testing::UnorderedElementsAre;

TEST_F(SupportLog, MissingZipStillCompletesSequence) {
  placeScript("zip", "echo zip: not found >&2; exit 127");
  launchAndOpen();
  collect();
  EXPECT_THAT(archives(), ElementsAre());
  ASSERT_THAT(folders(), SizeIs(1));
  press("Return");
  EXPECT_TRUE(sheetIsGone());
}

TEST_F(SupportLog, FullDiskLeavesNoArchiveAndCompletesSequence) {
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

TEST_F(SupportLog, FullTemporaryFolderLeavesNoCopyAndCompletesSequence) {
  launchAndOpen();
  std::ofstream("/tmp/full").close();
  const struct statvfs disk = [] {
    struct statvfs found {};
    EXPECT_EQ(::statvfs("/tmp", &found), 0);
    return found;
  }();
  {
    const test_support::FileDescriptor full(::open("/tmp/full", O_WRONLY | O_CLOEXEC));
    ASSERT_EQ(::posix_fallocate(full.get(), 0, static_cast<off_t>(disk.f_bavail * disk.f_frsize)), 0);
  }
  std::ofstream("/tmp/one more") << "text";
  EXPECT_EQ(fs::file_size("/tmp/one more"), 0U) << "the disk is not full";
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

TEST_F(SupportLog, ExistingFolderOfSameUserIsUsed) {
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

TEST_F(SupportLog, LinkAtFolderIsNotFollowed) {
  launchAndOpen();
  const auto names = namesToCome();
  fs::create_directories("/tmp/tovalinlog_elsewhere");
  for (const auto& name : names) fs::create_symlink("/tmp/tovalinlog_elsewhere", name);
  collect();
  EXPECT_TRUE(fs::is_empty("/tmp/tovalinlog_elsewhere"));
  EXPECT_THAT(archives(), ElementsAre());
}

TEST_F(SupportLog, FolderOfAnotherUserIsNotUsed) {
  launchAndOpen();
  const auto names = namesToCome();
  for (const auto& name : names) {
    fs::create_directories(name);
    fs::permissions(name, fs::perms::all);
    if (::chown(name.c_str(), 65534, 65534) != 0) GTEST_SKIP() << "cannot change the owner of a folder";
  }
  collect();
  EXPECT_EQ(foldersWithLogs(names), 0);
  EXPECT_THAT(archives(), ElementsAre());
}

TEST_F(SupportLog, CloseRequestTogetherWithAnswerIsRefused) {
  launchAndOpen();
  openFirstSheet();
  const auto question = messageOfSheet();
  whileAgentIsStopped([&] {
    clickAt(sheetsDefault);
    test_support::deliverCloseRequest(display_.name(), window_.id);
  });
  waitForSheetAfter(question);
  EXPECT_EQ(supportWindows(), 1);
  EXPECT_THAT(archives(), SizeIs(1));
}

TEST_F(SupportLog, CloseRequestDuringCollectionIsRefusedByCompletionAlert) {
  collectUntilPacking();
  ASSERT_TRUE(sheetIsGone());
  test_support::deliverCloseRequest(display_.name(), window_.id);
  timeline_.release("zip");
  ASSERT_TRUE(sheetIsUp());
  waitUntilInputIsProcessed();
  EXPECT_EQ(supportWindows(), 1);
  press("Escape");
  ASSERT_TRUE(sheetIsGone());
  closeWindow();
  terminateAgent();
}

// The modal runs of the notices process events.
TEST_F(SupportLog, CloseRequestBehindNoticesDuringCollectionIsRefusedByCompletionAlert) {
  collectUntilPacking();
  ASSERT_TRUE(sheetIsGone());
  for (const char* message : {"-non", "-noff", "-neon", "-neoff"}) send(message);
  test_support::deliverCloseRequest(display_.name(), window_.id);
  timeline_.release("zip");
  ASSERT_TRUE(sheetIsUp());
  waitUntilInputIsProcessed();
  EXPECT_EQ(supportWindows(), 1);
  clickAt(sheetsDefault);
  ASSERT_TRUE(sheetIsGone());
  closeWindow();
  terminateAgent();
}

// The end of a notice that was shown before the support window stops the support window's modal run.
TEST_F(SupportLog, CloseRequestAroundEndOfEarlierNoticeIsRefusedByCompletionAlert) {
  launchInPanel();
  for (const bool noticeFirst : {true, false}) {
    send("-non");
    ASSERT_TRUE(test_support::waitForWindow(display_.name(), isAccessNotice));
    openWindow();
    continueUntilPacking();
    ASSERT_TRUE(sheetIsGone());
    if (noticeFirst) send("-noff");
    test_support::deliverCloseRequest(display_.name(), window_.id);
    if (!noticeFirst) send("-noff");
    timeline_.release("zip");
    ASSERT_TRUE(sheetIsUp()) << noticeFirst;
    EXPECT_TRUE(hides(isAccessNotice));
    EXPECT_EQ(supportWindows(), 1);
    clickAt(sheetsDefault);
    ASSERT_TRUE(sheetIsGone());
    closeWindow();
    timeline_.clear();
  }
  terminateAgent();
}

TEST_F(SupportLog, InputDuringCollectionIsDiscarded) {
  collectUntilPacking();
  ASSERT_TRUE(sheetIsGone());
  timeline_.clear();
  clickAt(sheetsDefault);
  press("Return");
  press("Escape");
  clickAt(faqMiddle);
  timeline_.release("zip");
  ASSERT_TRUE(sheetIsUp());
  waitUntilInputIsProcessed();
  EXPECT_TRUE(sheetIsUp());
  EXPECT_EQ(count("run: open"), 0);
  clickAt(sheetsDefault);
  EXPECT_TRUE(sheetIsGone());
}

TEST_F(SupportLog, NoticesRequestedDuringCollectionLeaveCompletionAlert) {
  collectUntilPacking();
  ASSERT_TRUE(sheetIsGone());
  send("-non");
  send("-noff");
  timeline_.release("zip");
  EXPECT_TRUE(sheetIsUp());
  EXPECT_TRUE(hides(isAccessNotice));
  clickAt(sheetsDefault);
  EXPECT_TRUE(sheetIsGone());
}

TEST_F(SupportLog, SignalDuringCollectionIsHandledAfterIt) {
  collectUntilPacking();
  agent_.terminate();
  timeline_.release("zip");
  EXPECT_EQ(endOfAgent(), test_support::ExitStatus{.code = 0});
  EXPECT_EQ(count(killRun), 1);
}

}  // namespace

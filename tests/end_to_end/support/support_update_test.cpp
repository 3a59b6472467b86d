#include <gmock/gmock.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "tests/end_to_end/support/support_fixture.h"
#include "tests/harness/processes/file_contents.h"

namespace {

using testing::ElementsAre;

constexpr const char* openUpdater = "run: open /tmp/tovalinupdate.app";

// Makes /tmp fail with ENOSPC for new files while this object exists; existing files can still grow.
class NoMoreFilesInTmp {
 public:
  NoMoreFilesInTmp() {
    struct statvfs status {};
    EXPECT_EQ(::statvfs("/tmp", &status), 0);
    maxFiles_ = status.f_files;
    std::filesystem::create_directory(filler);
    setMaxFiles(status.f_files - status.f_ffree + 1);
    // Programs of earlier tests may still remove files.
    filling_ = std::jthread([](const std::stop_token& stop) {
      for (int number = 0; !stop.stop_requested(); std::this_thread::sleep_for(std::chrono::milliseconds(1)))
        if (std::ofstream(filler + std::to_string(number)).is_open()) ++number;
    });
  }
  ~NoMoreFilesInTmp() {
    filling_ = {};
    setMaxFiles(maxFiles_);
    std::filesystem::remove_all(filler);
  }
  NoMoreFilesInTmp(const NoMoreFilesInTmp&) = delete;
  NoMoreFilesInTmp& operator=(const NoMoreFilesInTmp&) = delete;

  [[nodiscard]] static bool isEffective() { return ::mkdir("/tmp/one more", 0700) == -1 && errno == ENOSPC; }

 private:
  static void setMaxFiles(fsfilcnt_t files) {
    EXPECT_EQ(::mount("", "/tmp", "", MS_REMOUNT, ("nr_inodes=" + std::to_string(files)).c_str()), 0);
  }

  inline static const std::string filler = "/tmp/filler/";
  fsfilcnt_t maxFiles_ = 0;
  std::jthread filling_;
};

// The Update button and the window after its use.
class SupportUpdate : public SupportTest {
 protected:
  void SetUp() override {
    std::filesystem::remove_all("/tmp/tovalinupdate.app");
    SupportTest::SetUp();
  }
  void update() {
    launchAndOpen();
    timeline_.clear();
    clickAt(updateMiddle);
    ASSERT_TRUE(waitForText(openUpdater));
  }
};

TEST_F(SupportUpdate, CopiesUpdaterAndOpensCopy) {
  update();
  EXPECT_TRUE(std::filesystem::exists("/tmp/tovalinupdate.app/Contents/Info.plist"));
}

TEST_F(SupportUpdate, LogsSendsBeaconAndRunsBothCommandsInOrder) {
  std::filesystem::copy_file(TOVALIN_RECORDER, "/tmp/outside commands/cp",
                             std::filesystem::copy_options::overwrite_existing);
  timeline_.setStatus("cp", 1);
  update();
  EXPECT_TRUE(waitForClickBeacon("updatebtn"));
  EXPECT_EQ(beaconsOf("updatebtn"), 1);
  EXPECT_THAT(texts(), ElementsAre("log 6: -[nimbatrayAppDelegate updateBtnClick:] update button click!",
                                   "run: cp -Rf " + bundle_ + "/Contents/Resources/tovalinupdate.app /tmp/",
                                   openUpdater));
  std::filesystem::remove("/tmp/outside commands/cp");
}

TEST_F(SupportUpdate, MissingUpdaterLeavesNothing) {
  launchAndOpen();
  std::filesystem::remove_all(bundle_ + "/Contents/Resources/tovalinupdate.app");
  timeline_.clear();
  clickAt(updateMiddle);
  ASSERT_TRUE(waitForText(openUpdater));
  EXPECT_FALSE(std::filesystem::exists("/tmp/tovalinupdate.app"));
}

TEST_F(SupportUpdate, OwnCopyFromBeforeIsReplaced) {
  std::filesystem::create_directories("/tmp/tovalinupdate.app/Contents");
  std::ofstream("/tmp/tovalinupdate.app/Contents/Info.plist") << "old";
  update();
  EXPECT_THAT(test_support::contentsOf("/tmp/tovalinupdate.app/Contents/Info.plist"),
              testing::Not(testing::HasSubstr("old")));
}

TEST_F(SupportUpdate, FolderOfAnotherUserIsNeitherFilledNorOpened) {
  std::filesystem::create_directories("/tmp/tovalinupdate.app");
  std::filesystem::permissions("/tmp/tovalinupdate.app", std::filesystem::perms(0777));
  launchAndOpen();
  timeline_.clear();
  clickAt(updateMiddle);
  EXPECT_TRUE(waitForText(
      "log 3: updater's folder belongs to or is writable by other users : /tmp/tovalinupdate.app"));
  choose("Automount Off");
  ASSERT_TRUE(waitForText("pipe: -u"));
  EXPECT_EQ(count(openUpdater), 0);
  EXPECT_TRUE(std::filesystem::is_empty("/tmp/tovalinupdate.app"));
}

// Another user could create the folder between the failure and the copy.
TEST_F(SupportUpdate, FailureToCreateFolderCopiesAndOpensNothing) {
  launchAndOpen();
  timeline_.clear();
  const NoMoreFilesInTmp full;
  ASSERT_TRUE(full.isEffective());
  clickAt(updateMiddle);
  EXPECT_TRUE(waitForText("log 3: updater's folder cannot be created. errno : 28"));
  choose("Automount Off");
  ASSERT_TRUE(waitForText("pipe: -u"));
  EXPECT_EQ(count("run: "), 0);
}

TEST_F(SupportUpdate, WindowStaysInFrontAndWorks) {
  update();
  choose("Automount Off");
  ASSERT_TRUE(waitForText("pipe: -u"));
  EXPECT_EQ(supportWindows(), 1);
  EXPECT_TRUE(becomesActive(window_.id));
  // Above the agent's other windows, but not kept above those of other programs.
  EXPECT_TRUE(test_support::waitForWindow(display_.name(), [](const test_support::XWindow& window) {
    return isSupportWindow(window) && std::ranges::count(window.states, "_NET_WM_STATE_ABOVE") == 0;
  }));
  clickAt(faqMiddle);
  EXPECT_TRUE(waitForText("run: open " + server_->origin() + "/support/tovalin/"));
  EXPECT_EQ(count("log 6: -[nimbatrayAppDelegate supportWindowWillClose:]"), 0);
}

TEST_F(SupportUpdate, ChoosingWindowAgainOnlyFetchesAgain) {
  update();
  static_cast<void>(takeFetches());
  choose();
  ASSERT_TRUE(waitForClickBeacon("support"));
  choose("Automount Off");
  ASSERT_TRUE(waitForText("pipe: -u"));
  EXPECT_THAT(takeFetches(), ElementsAre(versionFile, bannerListFile));
  EXPECT_EQ(supportWindows(), 1);
}

TEST_F(SupportUpdate, PressingTwiceRunsTwice) {
  update();
  timeline_.clear();
  clickAt(updateMiddle);
  EXPECT_TRUE(waitForText(openUpdater));
  EXPECT_EQ(supportWindows(), 1);
  closeWindow();
  terminateAgent();
}

TEST_F(SupportUpdate, RemainingWindowClosesAndNextOneIsNew) {
  update();
  closeWindow();
  EXPECT_TRUE(waitForText("log 6: -[nimbatrayAppDelegate supportWindowWillClose:]"));
  static_cast<void>(takeFetches());
  openWindow();
  EXPECT_EQ(takeFetches().size(), 4U);
  closeWindow();
}

TEST_F(SupportUpdate, LaterFailedFetchLeavesOpenWindowUnchanged) {
  update();
  server_.reset();
  choose();
  choose("Automount Off");
  ASSERT_TRUE(waitForText("pipe: -u"));
  EXPECT_EQ(supportWindows(), 1);
  timeline_.clear();
  clickAt(updateMiddle);
  EXPECT_TRUE(waitForText(openUpdater));
}

TEST_F(SupportUpdate, IsDisabledWithoutNetworkAfterWindowWithUpdate) {
  launchAndOpen();
  closeWindow();
  server_.reset();
  openWindow();
  timeline_.clear();
  clickAt(updateMiddle);
  clickAt(faqMiddle);
  expectNothingRun();
}

}  // namespace

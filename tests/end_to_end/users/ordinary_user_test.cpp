#include <sys/mount.h>

#include <fstream>

#include "tests/end_to_end/users/ordinary_user_fixture.h"
#include "tests/harness/collect_messages.h"
#include "tests/harness/processes/file_contents.h"
#include "tools/tvldump/record_reader.h"

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using test_support::contentsOf;
using test_support::FileDescriptor;
using test_support::waitUntil;

const std::string ownFolder = ownHome + "/.local/share/Tovalin";
const std::string deviceMessage = test_support::deviceMessage();

int records() {
  int found = 0;
  for (const auto& entry : fs::directory_iterator(ownFolder)) {
    const std::string bytes = contentsOf(entry.path());
    for (std::size_t at = bytes.find("\x06My Pad"); at != std::string::npos;
         at = bytes.find("\x06My Pad", at + 1))
      ++found;
  }
  return found;
}

void expectWholeFiles() {
  for (const auto& entry : fs::directory_iterator(ownFolder)) {
    if (entry.path().extension() != ".dat") continue;
    const std::string bytes = contentsOf(entry.path());
    tools::RecordReader reader(bytes);
    while (reader.next()) continue;
    EXPECT_FALSE(reader.damage()) << "at byte " << reader.damage()->offset;
  }
}

TEST_F(OrdinaryUser, NotificationPipeWithoutPermissionsServesOpenDescriptors) {
  launchAsUser();
  ASSERT_EQ(::chmod(pipePath, 0), 0);
  ASSERT_FALSE(succeeds({"sh", "-c", "exec 3<>/tmp/KMNOTIPIPE"}));
  send("-non");
  EXPECT_TRUE(shows(isAccessNotice));
  terminateAgent();
}

TEST_F(OrdinaryUser, NotificationPipeOfAnotherUserIsReportedAndLeftAlone) {
  ASSERT_EQ(::mkfifo(pipePath, 0600), 0);
  ASSERT_FALSE(succeeds({"sh", "-c", "exec 3<>/tmp/KMNOTIPIPE"}));
  startAsUser();
  EXPECT_TRUE(waitForText("log 3: -[nimbatrayAppDelegate notiThread] open pipe error. errno : 13"));
  terminateAgent();
  struct stat status {};
  ASSERT_EQ(::stat(pipePath, &status), 0);
  EXPECT_EQ(status.st_mode, static_cast<mode_t>(S_IFIFO | 0600));
}

TEST_F(OrdinaryUser, WorldWritablePipesOfAnotherUserAreUsed) {
  ASSERT_EQ(::mkfifo(pipePath, 0600), 0);
  for (const char* path : {commandPipe, pipePath}) ASSERT_EQ(::chmod(path, 0666), 0);
  const FileDescriptor theirs(::open(pipePath, O_RDWR | O_NONBLOCK | O_CLOEXEC));
  ASSERT_EQ(::write(theirs.get(), "-non", 4), 4);
  startAsUser();
  EXPECT_TRUE(waitForText("pipe: -ton"));
  EXPECT_TRUE(shows(isAccessNotice));
  terminateAgent();
  EXPECT_TRUE(fs::is_fifo(pipePath));
}

TEST_F(OrdinaryUser, UnwritableCommandPipeIsReportedAndLeftAlone) {
  ASSERT_EQ(::chmod(commandPipe, 0600), 0);
  ASSERT_FALSE(succeeds({"sh", "-c", "exec 3<>/tmp/KMPIPE"}));
  startAsUser();
  EXPECT_TRUE(waitForText("log 3: open pipe failed. errno : 13"));
  ASSERT_TRUE(waitForText("log 6: read_pipe read pipe message : "));
  send("-non");
  EXPECT_TRUE(shows(isAccessNotice));
  terminateAgent();
  EXPECT_EQ(count("pipe: "), 0);
}

TEST_F(OrdinaryUser, UnwritablePipeFolderIsReported) {
  ASSERT_EQ(::chmod("/tmp", 0755), 0);
  ASSERT_FALSE(succeeds({"touch", "/tmp/file"}));
  startAsUser();
  EXPECT_TRUE(waitForText("log 3: -[nimbatrayAppDelegate notiThread] make pipe failed. errno : 13"));
  terminateAgent();
}

TEST_F(OrdinaryUser, PipeInFolderMadeUnwritableKeepsWorking) {
  launchAsUser();
  ASSERT_EQ(::chmod("/tmp", 0755), 0);
  ASSERT_FALSE(succeeds({"rm", pipePath}));
  send("-non");
  EXPECT_TRUE(shows(isAccessNotice));
  terminateAgent();
}

TEST_F(OrdinaryUser, PipeRemovedDuringRunServesOpenDescriptors) {
  launchAsUser();
  const FileDescriptor open(::open(pipePath, O_WRONLY | O_NONBLOCK | O_CLOEXEC));
  fs::remove(pipePath);
  ASSERT_EQ(::write(open.get(), "-non", 4), 4);
  EXPECT_TRUE(shows(isAccessNotice));
  terminateAgent();
  EXPECT_FALSE(fs::exists(pipePath));
}

TEST_F(OrdinaryUser, RecordFolderRemovedAndRestoredIsUsedAgain) {
  launchAsUser();
  send(deviceMessage);
  ASSERT_TRUE(waitUntil([] { return records() == 1; }));
  ASSERT_EQ(::chmod(ownFolder.c_str(), 0), 0);
  ASSERT_FALSE(succeeds({"ls", ownFolder}));
  send(deviceMessage);
  EXPECT_TRUE(saysOnConsole("open log failed: Permission denied"));
  ASSERT_EQ(::chmod(ownFolder.c_str(), 0700), 0);
  send(deviceMessage);
  EXPECT_TRUE(waitUntil([] { return records() == 2; }));
  terminateAgent();
}

TEST_F(OrdinaryUser, FullDiskDuringRunLosesOnlyWholeRecords) {
  fs::create_directories(ownFolder);
  ASSERT_EQ(::mount("tmpfs", ownFolder.c_str(), "tmpfs", 0, "mode=777,size=64k"), 0);
  launchAsUser();
  send(deviceMessage);
  ASSERT_TRUE(waitUntil([] { return records() == 1; }));
  // Fill the disk except for the page that the day's file has begun.
  const std::string filler = ownFolder + "/filler";
  std::ofstream(filler) << std::string(1 << 17, 'x');
  for (int i = 0; i < 200 && console_.find("write log failed") == std::string::npos; ++i) {
    send(deviceMessage);
    console_ += agent_.takeErrorOutput();
    timeline_.clear();
  }
  EXPECT_TRUE(saysOnConsole("write log failed: No space left on device"));
  const int whole = records();
  fs::remove(filler);
  send(deviceMessage);
  EXPECT_TRUE(waitUntil([&] { return records() == whole + 1; }));
  terminateAgent();
  expectWholeFiles();
  EXPECT_EQ(::umount(ownFolder.c_str()), 0);
}

}  // namespace

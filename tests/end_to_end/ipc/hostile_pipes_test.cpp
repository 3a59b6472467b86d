#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/un.h>

#include <fstream>

#include "tests/end_to_end/ipc/hostile_pipes_fixture.h"
#include "tests/harness/processes/file_contents.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using test_support::contentsOf;
using test_support::FileDescriptor;
using test_support::waitUntil;

FileDescriptor socketAt(const std::string& path) {
  FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  if (::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) return {};
  return socket;
}

TEST_F(HostilePipes, CommandPipeLinkedToFileOverwritesFirstBytes) {
  std::ofstream(planted) << "0123456789";
  fs::create_symlink(planted, commandPipe);
  startAndListen();
  EXPECT_EQ(contentsOf(planted), "-ton456789");
  expectNoticesAndProperEnd();
  EXPECT_EQ(contentsOf(planted), "-toff56789");
}

TEST_F(HostilePipes, CommandPipeLinkedToMissingFileCreatesNothing) {
  fs::create_symlink(planted, commandPipe);
  startAndListen();
  EXPECT_TRUE(waitForText("log 3: open pipe failed. errno : 2"));
  expectNoticesAndProperEnd();
  EXPECT_FALSE(fs::exists(planted));
}

TEST_F(HostilePipes, CommandPipeLinkedToFolderLeavesFolderUnchanged) {
  fs::create_directory(planted);
  fs::create_symlink(planted, commandPipe);
  startAndListen();
  EXPECT_TRUE(waitForText("log 3: open pipe failed. errno : 21"));
  expectNoticesAndProperEnd();
  EXPECT_TRUE(fs::is_empty(planted));
}

TEST_F(HostilePipes, CommandPipeLinkedToDeviceAcceptsMessage) {
  fs::create_symlink("/dev/null", commandPipe);
  startAndListen();
  EXPECT_EQ(count("log 3: open pipe failed"), 0);
  expectNoticesAndProperEnd();
}

TEST_F(HostilePipes, CommandPipeLinkedToFullDeviceIsWriteError) {
  fs::create_symlink("/dev/full", commandPipe);
  startAndListen();
  EXPECT_TRUE(waitForText("log 3: write error. errno : 28"));
  expectNoticesAndProperEnd();
}

TEST_F(HostilePipes, CommandPipeReplacedBySocketIsLoggedAndLeftAlone) {
  const FileDescriptor socket = socketAt(commandPipe);
  ASSERT_TRUE(socket.valid());
  ASSERT_EQ(::listen(socket.get(), 1), 0);
  const mode_t mode = modeOf(commandPipe);
  startAndListen();
  EXPECT_EQ(count("log 3: open pipe failed. errno : 6"), 1);
  expectNoticesAndProperEnd();
  EXPECT_TRUE(fs::is_socket(commandPipe));
  EXPECT_EQ(modeOf(commandPipe), mode);
}

TEST_F(HostilePipes, CommandPipeOnFullDiskIsWriteError) {
  fs::create_directory(planted);
  ASSERT_EQ(::mount("tmpfs", planted, "tmpfs", 0, "size=4k"), 0);
  std::ofstream(std::string(planted) + "/filler") << std::string(1 << 16, 'x');
  const std::string file = std::string(planted) + "/file";
  std::ofstream(file).close();
  fs::create_symlink(file, commandPipe);
  startAndListen();
  EXPECT_TRUE(waitForText("log 3: write error. errno : 28"));
  expectNoticesAndProperEnd();
  EXPECT_EQ(contentsOf(file), "");
  EXPECT_EQ(::umount(planted), 0);
}

TEST_F(HostilePipes, CommandPipeWithoutActiveReaderLosesOnlyMessages) {
  ASSERT_EQ(::mkfifo(commandPipe, 0666), 0);
  const FileDescriptor pipe(::open(commandPipe, O_RDWR | O_NONBLOCK | O_CLOEXEC));
  const std::string block(4096, '.');
  while (::write(pipe.get(), block.data(), block.size()) > 0) continue;
  startAndListen();
  EXPECT_TRUE(waitForText("log 3: write error. errno : 11"));
  timeline_.clear();
  ASSERT_TRUE(host_.click("Automount Off"));
  EXPECT_TRUE(waitForText("log 3: write error. errno : 11"));
  expectNoticesAndProperEnd();
}

TEST_F(HostilePipes, NotificationPipeLinkedToFileIsReadMadeAccessibleAndUnlinked) {
  std::ofstream(planted) << "-non";
  fs::permissions(planted, fs::perms::owner_read);
  fs::create_symlink(planted, pipePath);
  start();
  EXPECT_TRUE(shows(isAccessNotice));
  EXPECT_EQ(modeOf(planted), 0666u);
  expectProperEnd();
  EXPECT_FALSE(fs::is_symlink(pipePath));
  EXPECT_EQ(contentsOf(planted), "-non");
}

TEST_F(HostilePipes, NotificationPipeLinkedToMissingFileIsLoggedAndCreatesNothing) {
  fs::create_symlink(planted, pipePath);
  start();
  EXPECT_TRUE(waitForText("log 3: -[nimbatrayAppDelegate notiThread] make pipe failed. errno : 17"));
  EXPECT_TRUE(waitForText("log 3: -[nimbatrayAppDelegate notiThread] open pipe error. errno : 2"));
  EXPECT_TRUE(waitUntil([] { return !fs::is_symlink(pipePath); }));
  EXPECT_FALSE(fs::exists(planted));
  expectProperEnd();
}

TEST_F(HostilePipes, NotificationPipeLinkedToFolderKeepsItsContents) {
  fs::create_directory(planted);
  std::ofstream(std::string(planted) + "/file") << "-non";
  fs::create_symlink(planted, pipePath);
  start();
  EXPECT_TRUE(waitForText("log 3: read_pipe read error. errno : 21"));
  expectProperEnd();
  EXPECT_EQ(contentsOf(std::string(planted) + "/file"), "-non");
  EXPECT_EQ(modeOf(std::string(planted) + "/file"), 0644u);
  EXPECT_EQ(modeOf(planted), 0666u);
}

TEST_F(HostilePipes, NotificationPipeReplacedByFileIsReadAndDeletedByQuit) {
  std::ofstream(pipePath) << "-non";
  fs::permissions(pipePath, fs::perms::owner_read);
  start();
  EXPECT_TRUE(shows(isAccessNotice));
  EXPECT_EQ(modeOf(pipePath), 0666u);
  EXPECT_EQ(contentsOf(pipePath), "-non");
  expectProperEnd();
  EXPECT_FALSE(fs::exists(pipePath));
}

TEST_F(HostilePipes, NotificationPipeReplacedByEmptyFolderIsRemovedByQuit) {
  fs::create_directory(pipePath);
  start();
  EXPECT_TRUE(waitForText("log 3: read_pipe read error. errno : 21"));
  EXPECT_EQ(modeOf(pipePath), 0666u);
  expectProperEnd();
  EXPECT_FALSE(fs::exists(pipePath));
}

TEST_F(HostilePipes, NotificationPipeReplacedByNonEmptyFolderStaysInaccessible) {
  fs::create_directory(pipePath);
  const std::string file = std::string(pipePath) + "/file";
  std::ofstream(file) << "-non";
  start();
  EXPECT_TRUE(waitForText("log 3: read_pipe read error. errno : 21"));
  expectProperEnd();
  EXPECT_EQ(modeOf(pipePath), 0666u);
  EXPECT_EQ(contentsOf(file), "-non");
}

TEST_F(HostilePipes, NotificationPipeReplacedBySocketIsLoggedAndRemovedAtOnce) {
  const FileDescriptor socket = socketAt(pipePath);
  ASSERT_TRUE(socket.valid());
  start();
  EXPECT_TRUE(waitForText("log 3: -[nimbatrayAppDelegate notiThread] open pipe error. errno : 6"));
  EXPECT_TRUE(waitUntil([] { return !fs::exists(pipePath); }));
  expectProperEnd();
}

// Every read of these devices succeeds at once.
TEST_F(HostilePipes, NotificationPipeLinkedToEndlessDeviceIsReadAtLimitedRate) {
  for (const char* device : {"/dev/zero", "/dev/null"}) {
    fs::remove(pipePath);
    fs::create_symlink(device, pipePath);
    start();
    ASSERT_TRUE(waitForText("log 6: read_pipe read pipe message : "));
    timeline_.clear();
    const auto begin = std::chrono::steady_clock::now();
    ASSERT_TRUE(waitUntil([&] { return count("log 6: read_pipe read pipe message : ") >= 10; }));
    // Ten reads take ten timeouts of 30 ms.
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 250ms) << device;
    expectProperEnd();
    host_.clearEvents();
  }
}

// A controlling terminal could end an agent that is a session leader: its other end sends SIGHUP by hanging
// up.
TEST_F(HostilePipes, NotificationPipeLinkedToTerminalBecomesNoControllingTerminal) {
  ASSERT_EQ(::mount("devpts", "/dev/pts", "devpts", 0, "newinstance,ptmxmode=0666"), 0);
  FileDescriptor otherEnd(::open("/dev/pts/ptmx", O_RDWR | O_NOCTTY | O_CLOEXEC));
  ASSERT_EQ(::unlockpt(otherEnd.get()), 0);
  fs::create_symlink("/dev/pts/0", pipePath);
  ASSERT_TRUE(agent_.start({"setsid", agentProgram()}, {.environment = environment_}));
  ASSERT_TRUE(host_.waitForEvent("registered"));
  ASSERT_EQ(::getsid(agent_.pid()), agent_.pid());
  ASSERT_EQ(::write(otherEnd.get(), "-non\x04", 5), 5);
  EXPECT_TRUE(shows(isAccessNotice));
  otherEnd.reset();
  expectProperEnd();
  EXPECT_EQ(::umount2("/dev/pts", MNT_DETACH), 0);
}

TEST_F(HostilePipes, NotificationPipeReplacedDuringRunIsLeftAloneUntilEnd) {
  startAndListen();
  fs::remove(pipePath);
  ASSERT_EQ(::mkfifo(pipePath, 0600), 0);
  const FileDescriptor theirs(::open(pipePath, O_RDWR | O_NONBLOCK | O_CLOEXEC));
  ASSERT_EQ(::write(theirs.get(), "-non", 4), 4);
  timeline_.clear();
  ASSERT_TRUE(host_.click("Automount Off"));
  ASSERT_TRUE(host_.waitForEvent("clicked"));
  EXPECT_EQ(count("log 6: read_pipe"), 0);
  EXPECT_EQ(modeOf(pipePath), 0600u);
  expectProperEnd();
  EXPECT_FALSE(fs::exists(pipePath));
}

// Limits the number of files in /tmp; 0 removes the limit.
bool limitFiles(std::uint64_t count) {
  const std::string options = "mode=1777,size=512m,nr_inodes=" + std::to_string(count);
  return ::mount("tmpfs", "/tmp", "tmpfs", MS_REMOUNT, options.c_str()) == 0;
}

TEST_F(HostilePipes, FullFileSystemIsReportedAndMenuWorks) {
  struct statvfs room {};
  ASSERT_EQ(::statvfs("/tmp", &room), 0);
  ASSERT_TRUE(limitFiles(room.f_files - room.f_ffree));
  EXPECT_FALSE(std::ofstream(planted).is_open());
  start();
  EXPECT_TRUE(waitForText("log 3: -[nimbatrayAppDelegate notiThread] make pipe failed. errno : 28"));
  EXPECT_TRUE(waitForText("log 3: data file open fail"));
  ASSERT_TRUE(host_.click("Automount Off"));
  EXPECT_TRUE(host_.waitForEvent("clicked"));
  ASSERT_TRUE(limitFiles(0));
  expectProperEnd();
  EXPECT_EQ(recordsLike(quitRecord), 2);
}

}  // namespace

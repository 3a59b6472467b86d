#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

#include <atomic>
#include <fstream>
#include <functional>
#include <thread>

#include "tests/end_to_end/notice_fixture.h"
#include "tests/support/file_contents.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using test_support::contentsOf;
using test_support::FileDescriptor;
using test_support::waitUntil;

constexpr const char* commandPipe = "/tmp/KMPIPE";
constexpr const char* planted = "/tmp/planted";

mode_t modeOf(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

// A message of a whole read, so that what comes with it in a flood does not run into it.
std::string ofAWholeRead(std::string text) {
  text.resize(1024, '\0');
  return text;
}

// What somebody has put at the paths of the pipes before the agent starts, and what becomes of the agent.
class HostilePipes : public NoticeTest {
 protected:
  void SetUp() override {
    NoticeTest::SetUp();
    if (HasFatalFailure()) return;
    // The time line listens at the command pipe; here it hears the log and the commands alone.
    fs::remove_all(commandPipe);
    fs::remove_all(planted);
    install("/tmp/Applications/Tovalin.app");
    ASSERT_TRUE(host_.start(bus_));
  }
  void TearDown() override {
    NoticeTest::TearDown();
    for (const char* path : {commandPipe, pipePath, planted}) fs::remove_all(path);
  }

  void start() {
    startAgent();
    ASSERT_TRUE(host_.waitForEvent("registered")) << agent_.takeErrorOutput();
  }
  // ... whose notification pipe is its own.
  void startAndListen() {
    start();
    ASSERT_TRUE(waitForText("log 6: read_pipe read pipe message : "));
  }
  void expectNoticesAndAProperEnd() {
    send("-non");
    EXPECT_TRUE(shows(isAccessNotice));
    expectAProperEnd();
  }
  void expectAProperEnd() {
    ASSERT_TRUE(host_.click("Quit Tovalin"));
    EXPECT_EQ(endOfAgent(), test_support::ExitStatus{.code = 0});
  }

  void showAndHideNotice() {
    send("-non");
    ASSERT_TRUE(shows(isAccessNotice));
    send("-noff");
    ASSERT_TRUE(hides(isAccessNotice));
  }
  [[nodiscard]] bool noticeIsUp() const {
    return test_support::waitForWindow(display_.name(), isAccessNotice, 0ms).has_value();
  }
  // One message beside those of others, without the wait until it was read.
  static void writeInFlood(const std::string& text) {
    const FileDescriptor pipe(::open(pipePath, O_WRONLY | O_CLOEXEC));
    const std::string message = ofAWholeRead(text);
    EXPECT_EQ(::write(pipe.get(), message.data(), message.size()), static_cast<ssize_t>(message.size()));
  }
  // Whether the condition comes true; the log is heard all the time, and not kept.
  [[nodiscard]] bool comesInFlood(const std::function<bool()>& condition) {
    const auto comesTrue = [&] {
      timeline_.clear();
      return condition();
    };
    return waitUntil(comesTrue, 60s);
  }
};

TEST_F(HostilePipes, ACommandPipeThatIsALinkToAFileHasTheFilesFirstBytesOverwritten) {
  std::ofstream(planted) << "0123456789";
  fs::create_symlink(planted, commandPipe);
  startAndListen();
  EXPECT_EQ(contentsOf(planted), "-ton456789");
  expectNoticesAndAProperEnd();
  EXPECT_EQ(contentsOf(planted), "-toff56789");
}

TEST_F(HostilePipes, ACommandPipeThatIsADanglingLinkMakesNothing) {
  fs::create_symlink(planted, commandPipe);
  startAndListen();
  EXPECT_TRUE(waitForText("log 3: open pipe failed. errno : 2"));
  expectNoticesAndAProperEnd();
  EXPECT_FALSE(fs::exists(planted));
}

TEST_F(HostilePipes, ACommandPipeThatIsALinkToAFolderLeavesTheFolder) {
  fs::create_directory(planted);
  fs::create_symlink(planted, commandPipe);
  startAndListen();
  EXPECT_TRUE(waitForText("log 3: open pipe failed. errno : 21"));
  expectNoticesAndAProperEnd();
  EXPECT_TRUE(fs::is_empty(planted));
}

TEST_F(HostilePipes, ACommandPipeThatIsADeviceTakesTheMessage) {
  fs::create_symlink("/dev/null", commandPipe);
  startAndListen();
  EXPECT_EQ(count("log 3: open pipe failed"), 0);
  expectNoticesAndAProperEnd();
}

TEST_F(HostilePipes, ACommandPipeThatIsAFullDeviceIsAWriteErrorAndNoMore) {
  fs::create_symlink("/dev/full", commandPipe);
  startAndListen();
  EXPECT_TRUE(waitForText("log 3: write error. errno : 28"));
  expectNoticesAndAProperEnd();
}

TEST_F(HostilePipes, ACommandPipeOnAFullDiskIsAWriteErrorAndNoMore) {
  fs::create_directory(planted);
  ASSERT_EQ(::mount("tmpfs", planted, "tmpfs", 0, "size=4k"), 0);
  std::ofstream(std::string(planted) + "/filler") << std::string(1 << 16, 'x');
  const std::string file = std::string(planted) + "/file";
  std::ofstream(file).close();
  fs::create_symlink(file, commandPipe);
  startAndListen();
  EXPECT_TRUE(waitForText("log 3: write error. errno : 28"));
  expectNoticesAndAProperEnd();
  EXPECT_EQ(contentsOf(file), "");
  EXPECT_EQ(::umount(planted), 0);
}

TEST_F(HostilePipes, ACommandPipeWhoseReaderNeverReadsCostsOnlyTheMessages) {
  ASSERT_EQ(::mkfifo(commandPipe, 0666), 0);
  const FileDescriptor pipe(::open(commandPipe, O_RDWR | O_NONBLOCK | O_CLOEXEC));
  const std::string block(4096, '.');
  while (::write(pipe.get(), block.data(), block.size()) > 0) continue;
  startAndListen();
  EXPECT_TRUE(waitForText("log 3: write error. errno : 11"));
  timeline_.clear();
  ASSERT_TRUE(host_.click("Automount Off"));
  EXPECT_TRUE(waitForText("log 3: write error. errno : 11"));
  expectNoticesAndAProperEnd();
}

TEST_F(HostilePipes, ANotificationPipeThatIsALinkToAFileReadsItOpensItToAllAndTakesTheLinkAway) {
  std::ofstream(planted) << "-non";
  fs::permissions(planted, fs::perms::owner_read);
  fs::create_symlink(planted, pipePath);
  start();
  EXPECT_TRUE(shows(isAccessNotice));
  EXPECT_EQ(modeOf(planted), 0666u);
  expectAProperEnd();
  EXPECT_FALSE(fs::is_symlink(pipePath));
  EXPECT_EQ(contentsOf(planted), "-non");
}

TEST_F(HostilePipes, ANotificationPipeThatIsADanglingLinkIsToldAndMakesNothing) {
  fs::create_symlink(planted, pipePath);
  start();
  EXPECT_TRUE(waitForText("log 3: -[nimbatrayAppDelegate notiThread] make pipe failed. errno : 17"));
  EXPECT_TRUE(waitForText("log 3: -[nimbatrayAppDelegate notiThread] open pipe error. errno : 2"));
  EXPECT_TRUE(waitUntil([] { return !fs::is_symlink(pipePath); }));
  EXPECT_FALSE(fs::exists(planted));
  expectAProperEnd();
}

TEST_F(HostilePipes, ANotificationPipeThatIsALinkToAFolderLeavesWhatIsInIt) {
  fs::create_directory(planted);
  std::ofstream(std::string(planted) + "/file") << "-non";
  fs::create_symlink(planted, pipePath);
  start();
  EXPECT_TRUE(waitForText("log 3: read_pipe read error. errno : 21"));
  expectAProperEnd();
  EXPECT_EQ(contentsOf(std::string(planted) + "/file"), "-non");
  EXPECT_EQ(modeOf(std::string(planted) + "/file"), 0644u);
  EXPECT_EQ(modeOf(planted), 0666u);
}

// Each read gives something at once, for ever.
TEST_F(HostilePipes, ANotificationPipeThatIsADeviceWithoutEndFloodsNothing) {
  for (const char* device : {"/dev/zero", "/dev/null"}) {
    fs::remove(pipePath);
    fs::create_symlink(device, pipePath);
    start();
    ASSERT_TRUE(waitForText("log 6: read_pipe read pipe message : "));
    timeline_.clear();
    const auto begin = std::chrono::steady_clock::now();
    ASSERT_TRUE(waitUntil([&] { return count("log 6: read_pipe read pipe message : ") >= 10; }));
    // Ten reads take ten wait times of 30 ms.
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 250ms) << device;
    expectAProperEnd();
    host_.clearEvents();
  }
}

TEST_F(HostilePipes, APipeThatIsReplacedInMidRunIsLeftToWhoeverReplacedItUntilTheEnd) {
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
  expectAProperEnd();
  EXPECT_FALSE(fs::exists(pipePath));
}

// Room for so many files in /tmp, or without a limit.
bool limitFiles(std::uint64_t count) {
  const std::string options = "mode=1777,size=512m,nr_inodes=" + std::to_string(count);
  return ::mount("tmpfs", "/tmp", "tmpfs", MS_REMOUNT, options.c_str()) == 0;
}

TEST_F(HostilePipes, WithoutRoomForOneMoreFileTheAgentTellsWhatIsMissingAndItsMenuWorks) {
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
  expectAProperEnd();
  EXPECT_EQ(recordsLike(quitRecord), 2);
}

// In kilobytes; the address sanitizer keeps freed memory, up to a quarter of a gigabyte.
#ifdef __SANITIZE_ADDRESS__
constexpr long kMostGrowth = 300 * 1024;
#else
constexpr long kMostGrowth = 1024;
#endif

// Writes commands that mean nothing into the notification pipe, as fast as it takes them.
class Flood {
 public:
  [[nodiscard]] int sent() const { return sent_; }
  void end() {
    thread_.request_stop();
    thread_.join();
  }

 private:
  void run(const std::stop_token& stop) {
    const FileDescriptor pipe(::open(pipePath, O_WRONLY | O_CLOEXEC));
    const std::string message = ofAWholeRead("no such command");
    while (!stop.stop_requested() && ::write(pipe.get(), message.data(), message.size()) == 1024) ++sent_;
  }

  std::atomic<int> sent_ = 0;
  std::jthread thread_{[this](const std::stop_token& stop) { run(stop); }};
};

TEST_F(HostilePipes, AFloodOfMessagesCostsNoMemoryAndNoticesAndMenuServeOn) {
  constexpr int messages = 100'000;
  startAndListen();
  showAndHideNotice();
  const long memory = ownMemoryInKilobytes();

  Flood flood;
  ASSERT_TRUE(comesInFlood([&] { return flood.sent() > messages / 10; }));
  writeInFlood("-non");
  EXPECT_TRUE(comesInFlood([&] { return noticeIsUp(); }));
  ASSERT_TRUE(host_.click("Automount Off"));
  EXPECT_TRUE(comesInFlood([&] { return host_.waitForEvent("clicked", 0ms).has_value(); }));
  writeInFlood("-noff");
  EXPECT_TRUE(comesInFlood([&] { return !noticeIsUp(); }));
  EXPECT_TRUE(comesInFlood([&] { return flood.sent() >= messages; }));
  flood.end();

  writeInFlood("-non");
  EXPECT_TRUE(comesInFlood([&] { return noticeIsUp(); }));
  EXPECT_LE(ownMemoryInKilobytes() - memory, kMostGrowth);
  expectAProperEnd();
}

}  // namespace

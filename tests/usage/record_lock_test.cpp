#include <sys/file.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <chrono>
#include <csignal>

#include "tests/harness/processes/file_descriptor.h"
#include "tests/harness/processes/refused_call.h"
#include "tests/usage/fake_waits.h"
#include "tests/usage/record_fixture.h"
#include "tests/usage/small_disk.h"
#include "usage/usage_lock.h"

namespace settings_test {
namespace {

using namespace std::chrono_literals;
using test_support::FileDescriptor;

constexpr const char* kLock = "/tmp/support/Tovalin/TovalinUsage.lock";

FileDescriptor heldLock(const char* path) {
  FileDescriptor file(::open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  EXPECT_EQ(::flock(file.get(), LOCK_EX | LOCK_NB), 0);
  return file;
}

TEST_F(Records, HeldLockIsAwaitedOneSecondThenRecordIsAppendedWithoutIt) {
  TvlWriteQuitToFile();
  const FileDescriptor other = heldLock(kLock);
  const FakeWaits waits;
  TvlWriteQuitToFile();
  EXPECT_EQ(waits.waited(), 1s);
  EXPECT_EQ(contentsOf(kToday), kHeader + kQuit + kQuit);
}

TEST_F(Records, EmptyFileGetsNoHeaderWhileLockIsHeld) {
  write(kToday, "");
  const FileDescriptor other = heldLock(kLock);
  const FakeWaits waits;
  EXPECT_EQ(errorsOf(TvlWriteQuitToFile), "open log failed: Resource temporarily unavailable\n");
  EXPECT_EQ(waits.waited(), 1s);
  EXPECT_EQ(contentsOf(kToday), "");
}

TEST_F(Records, FreeLockIsNotAwaited) {
  const FakeWaits waits;
  TvlWriteQuitToFile();
  TvlWriteQuitToFile();
  EXPECT_EQ(waits.waited(), 0s);
}

TEST_F(Records, FileSystemWithoutLocksDoesNotDelayRecord) {
  const FakeWaits waits;
  ASSERT_TRUE(withRefusedCall(SYS_flock, ENOLCK, TvlWriteQuitToFile));
  EXPECT_EQ(waits.waited(), 0s);
  EXPECT_EQ(contentsOf(kToday), kHeader + kQuit);
}

// A process of another user that opened the file while it was readable for others and holds a lock on it.
class LockOfAnotherUser {
 public:
  explicit LockOfAnotherUser(const char* path) {
    int ends[2];
    EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    const FileDescriptor read(ends[0]), written(ends[1]);
    process_ = ::fork();
    if (process_ == 0) hold(path, written.get());
    char result = 'f';
    EXPECT_EQ(::read(read.get(), &result, 1), 1);
    isHeld_ = result == 'h';
  }
  LockOfAnotherUser(const LockOfAnotherUser&) = delete;
  LockOfAnotherUser& operator=(const LockOfAnotherUser&) = delete;
  ~LockOfAnotherUser() {
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
  }
  [[nodiscard]] bool isHeld() const { return isHeld_; }

 private:
  [[noreturn]] static void hold(const char* path, int result) {
    const bool held =
        test_support::becomeNobody() && ::flock(::open(path, O_RDONLY | O_CLOEXEC), LOCK_EX | LOCK_NB) == 0;
    if (::write(result, held ? "h" : "f", 1) == 1)
      while (true) ::pause();
    ::_exit(1);
  }

  pid_t process_ = -1;
  bool isHeld_ = false;
};

TEST_F(Records, LockOfAnotherUserOnFileDoesNotDelayRecord) {
  fs::permissions(kFolder, fs::perms(0755));
  write(kToday, kHeader);
  fs::permissions(kToday, fs::perms(0644));
  const LockOfAnotherUser other(kToday);
  if (!other.isHeld()) GTEST_SKIP() << "cannot change to another user";
  const FakeWaits waits;
  TvlWriteQuitToFile();
  TvlGetCollectData(deviceEvent(3, "Pad"));
  EXPECT_EQ(waits.waited(), 0s);
  EXPECT_EQ(contentsOf(kToday).substr(0, kHeader.size() + kQuitSize), kHeader + kQuit);
}

TEST_F(Records, EmptyFileLockedByAnotherUserGetsHeaderWithoutDelay) {
  write(kToday, "");
  fs::permissions(kToday, fs::perms(0644));
  const LockOfAnotherUser other(kToday);
  if (!other.isHeld()) GTEST_SKIP() << "cannot change to another user";
  const FakeWaits waits;
  TvlWriteQuitToFile();
  EXPECT_EQ(waits.waited(), 0s);
  EXPECT_EQ(contentsOf(kToday), kHeader + kQuit);
}

TEST_F(Records, LockFileAccessibleToAnotherUserIsReplaced) {
  const auto plant = [](const char* what) {
    fs::remove(kLock);
    write(kLock, "");
    if (what == std::string("readable")) return ::chmod(kLock, 0644);
    if (what == std::string("foreign"))
      return ::chmod(kLock, 0666) | ::chown(kLock, test_support::kNobody, 0);
    return ::chmod(kLock, 0600) | ::link(kLock, "/tmp/support/other name");
  };
  for (const char* what : {"readable", "foreign", "linked"}) {
    ASSERT_EQ(plant(what), 0) << what;
    const FileDescriptor planted = heldLock(kLock);
    const FakeWaits waits;
    EXPECT_TRUE(lockUsageFiles(kFolder).valid()) << what;
    EXPECT_EQ(waits.waited(), 0s) << what;
    struct stat status {};
    ASSERT_EQ(::stat(kLock, &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600u) << what;
    EXPECT_EQ(status.st_uid, ::geteuid()) << what;
  }
}

TEST_F(Records, LinkAtPathOfLockFileIsReplacedAndNotFollowed) {
  fs::create_symlink("/tmp/support/elsewhere", kLock);
  EXPECT_TRUE(lockUsageFiles(kFolder).valid());
  EXPECT_FALSE(fs::exists("/tmp/support/elsewhere"));
}

TEST_F(Records, WithoutLockFileRecordsAreAppendedToNonEmptyFileOnly) {
  fs::create_directory(kLock);
  EXPECT_EQ(errorsOf(TvlWriteQuitToFile), "open log failed: Is a directory\n");
  EXPECT_EQ(contentsOf(kToday), "");
  write(kToday, kHeader);
  TvlWriteQuitToFile();
  EXPECT_EQ(contentsOf(kToday), kHeader + kQuit);
}

TEST_F(Records, LockIsReleasedAfterRecord) {
  TvlWriteQuitToFile();
  const FileDescriptor lock = heldLock(kLock);
  EXPECT_TRUE(lock.valid());
}

// The other writer appends its record after this one has determined the end of the file.
TEST_F(SmallDisk, PartialRecordWithoutLockKeepsRecordOfOtherWriter) {
  write(kToday, kHeader);
  std::optional<UsageFile> passedBy;
  {
    const FileDescriptor other = heldLock(kLock);
    const FakeWaits waits;
    passedBy = UsageFile::open(kToday);
  }
  ASSERT_TRUE(passedBy);
  TvlWriteQuitToFile();
  const std::string before = contentsOf(kToday);
  ASSERT_EQ(before, kHeader + kQuit);
  EXPECT_THAT(errorsOf([&] { EXPECT_FALSE(passedBy->append(std::string(8192, 'x'))); }),
              StartsWith("write log failed: "));
  EXPECT_THAT(contentsOf(kToday), StartsWith(before));
  EXPECT_GT(contentsOf(kToday).size(), before.size()) << "the write was not partial";
}

}  // namespace
}  // namespace settings_test

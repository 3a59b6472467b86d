#include <fcntl.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <fstream>
#include <thread>

#include "tests/harness/processes/file_descriptor.h"
#include "tests/harness/processes/traced_process.h"
#include "tests/platform/linux/helpers/collectlogs_fixture.h"

namespace helper_test {
namespace {

using testing::UnorderedElementsAre;

TEST_F(CollectLogs, MatchingFilesAreCopiedWithMode0600) {
  put("a.log", std::string(100'000, 'a') + std::string("\0\xff end", 6));
  put("b.log");
  put("c.txt");
  put(".d.log");
  EXPECT_EQ(copy("1000000").code, 0);
  EXPECT_THAT(namesIn(target_), UnorderedElementsAre("a.log", "b.log"));
  EXPECT_EQ(copied("a.log"), contentsOf(source_ + "/a.log"));
  EXPECT_EQ(fs::status(target_ + "/a.log").permissions(), fs::perms(0600));
  EXPECT_EQ(namesIn(source_).size(), 4U);
}

TEST_F(CollectLogs, NoMatchingFileFails) {
  const Ended ended = copy();
  EXPECT_EQ(ended.code, 1);
  EXPECT_EQ(ended.error, "");
}

TEST_F(CollectLogs, MissingSourceIsReported) {
  const Ended ended = collect({"whole", "1", root_ + "/none", "*", target_});
  EXPECT_EQ(ended.code, 1);
  EXPECT_THAT(ended.error, HasSubstr("No such file or directory"));
}

TEST_F(CollectLogs, AnyFileNameIsCopied) {
  const std::set<std::string> names = {"-rf.log",
                                       " blank .log",
                                       "line\nend.log",
                                       "a*b[c]?.log",
                                       "'\"$`.log",
                                       "\xff\xfe.log",
                                       std::string(251, 'n') + ".log"};
  for (const std::string& name : names) put(name, name);
  EXPECT_EQ(copy("10000").code, 0);
  EXPECT_EQ(namesIn(target_), names);
  for (const std::string& name : names) EXPECT_EQ(copied(name), name);
}

TEST_F(CollectLogs, WholeFilesThatFitAreCopiedNewestFirst) {
  put("oldest.log", std::string(400, 'x'), 3h);
  put("newest.log", std::string(400, 'x'), 1h);
  put("middle.log", std::string(600, 'x'), 2h);
  const Ended ended = copy("1000");
  EXPECT_THAT(namesIn(target_), UnorderedElementsAre("newest.log", "middle.log"));
  EXPECT_EQ(ended.code, 1);
  EXPECT_THAT(ended.error, HasSubstr("files skipped: 1"));
}

TEST_F(CollectLogs, WholeFileBeyondLimitIsLeftOut) {
  put("fits.log", std::string(1000, 'x'), 2h);
  put("too large.log", std::string(1001, 'x'), 1h);
  EXPECT_EQ(copy("1000").code, 1);
  EXPECT_THAT(namesIn(target_), ElementsAre("fits.log"));
}

TEST_F(CollectLogs, SparseFileOfOneTerabyteIsLeftOut) {
  put("huge.log");
  fs::resize_file(source_ + "/huge.log", std::uintmax_t{1} << 40);
  EXPECT_EQ(copy("1000").code, 1);
  EXPECT_THAT(namesIn(target_), IsEmpty());
}

TEST_F(CollectLogs, TailOfFileThatDoesNotFitIsCopied) {
  put("older.log", std::string(700, 'x') + "the end of the older", 2h);
  put("newer.log", std::string(980, 'y'), 1h);
  EXPECT_EQ(copy("1000", "newest").code, 0);
  EXPECT_EQ(copied("newer.log"), std::string(980, 'y'));
  EXPECT_EQ(copied("older.log"), "the end of the older");
}

TEST_F(CollectLogs, NewestFileGetsGivenName) {
  put("older.log", "older", 2h);
  put("newer.log", "newer", 1h);
  static_cast<void>(collect({"newest", "1000", source_, "*.log", target_, "system.log"}));
  EXPECT_THAT(namesIn(target_), ElementsAre("system.log"));
  EXPECT_EQ(copied("system.log"), "newer");
}

TEST_F(CollectLogs, GrowingFileIsCopiedUpToLimit) {
  put("growing.log", std::string(1'000'000, 'x'));
  std::atomic<bool> stop = false;
  std::thread writer([&] {
    std::ofstream file(source_ + "/growing.log", std::ios::app);
    for (const std::string more(1 << 16, 'y'); !stop && file.tellp() < 200'000'000;)
      file << more << std::flush;
  });
  const Ended ended = copy("1000000", "newest");
  stop = true;
  writer.join();
  EXPECT_EQ(ended.code, 0);
  EXPECT_EQ(fs::file_size(target_ + "/growing.log"), 1'000'000U);
}

TEST_F(CollectLogs, FilesBeyondNewestThousandAreLeftOut) {
  for (int i = 0; i < 1003; ++i) put(std::to_string(i) + ".log", "x", std::chrono::seconds(i * 10));
  EXPECT_EQ(copy("10000").code, 1);
  EXPECT_EQ(namesIn(target_).size(), 1000U);
  EXPECT_TRUE(fs::exists(target_ + "/999.log"));
  EXPECT_FALSE(fs::exists(target_ + "/1000.log"));
}

TEST_F(CollectLogs, EntriesBeyondTwentyThousandAreNotRead) {
  for (int i = 0; i < 20'500; ++i) put(std::to_string(i) + ".log", "");
  const Ended ended = copy();
  EXPECT_EQ(namesIn(target_).size(), 1000U);
  EXPECT_THAT(ended.error, HasSubstr("files skipped: 19000"));
}

TEST_F(CollectLogs, OtherThanRegularFileIsLeftOut) {
  ASSERT_EQ(::mkfifo((source_ + "/fifo.log").c_str(), 0666), 0);
  put("elsewhere.txt", "secret");
  fs::create_symlink(source_ + "/elsewhere.txt", source_ + "/link.log");
  fs::create_directory(source_ + "/folder.log");
  fs::create_symlink("/dev/zero", source_ + "/device.log");
  sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
  (source_ + "/socket.log").copy(address.sun_path, sizeof address.sun_path - 1);
  const test_support::FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  ASSERT_EQ(::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  put("real.log", "text");
  const Ended ended = copy();
  EXPECT_EQ(ended.code, 1);
  EXPECT_THAT(ended.error, HasSubstr("files skipped: 5"));
  EXPECT_THAT(namesIn(target_), ElementsAre("real.log"));
}

// open(2) without O_NONBLOCK blocks up to 45 s (lease-break-time) until the lease is released.
TEST_F(CollectLogs, LeasedFileIsLeftOutWithoutWaiting) {
  put("leased.log");
  put("other.log");
  ASSERT_NE(::signal(SIGIO, SIG_IGN), SIG_ERR);
  const test_support::FileDescriptor file(::open((source_ + "/leased.log").c_str(), O_RDWR | O_CLOEXEC));
  ASSERT_EQ(::fcntl(file.get(), F_SETLEASE, F_WRLCK), 0);
  EXPECT_EQ(copy().code, 1);
  EXPECT_THAT(namesIn(target_), ElementsAre("other.log"));
}

TEST_F(CollectLogs, HardLinkIsLeftOut) {
  put("secret.txt");
  fs::create_hard_link(source_ + "/secret.txt", source_ + "/second.log");
  EXPECT_EQ(copy().code, 1);
  EXPECT_THAT(namesIn(target_), IsEmpty());
}

TEST_F(CollectLogs, LinkOrFifoAtTargetNameIsReplaced) {
  writeFile(root_ + "/spared", "spared");
  fs::create_symlink(root_ + "/spared", target_ + "/a.log");
  ASSERT_EQ(::mkfifo((target_ + "/b.log").c_str(), 0666), 0);
  writeFile(target_ + "/c.log", "an earlier, longer text");
  for (const char* name : {"a.log", "b.log", "c.log"}) put(name, "text");
  EXPECT_EQ(copy().code, 0);
  EXPECT_EQ(contentsOf(root_ + "/spared"), "spared");
  for (const char* name : {"a.log", "b.log", "c.log"}) {
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(target_ + "/" + name)));
    EXPECT_EQ(copied(name), "text");
  }
}

TEST_F(CollectLogs, TargetGetsMode0700) {
  fs::permissions(target_, fs::perms::all);
  put("a.log");
  EXPECT_EQ(copy().code, 0);
  EXPECT_EQ(fs::status(target_).permissions(), fs::perms(0700));
}

TEST_F(CollectLogs, LinkOrFifoAsTargetIsRefused) {
  put("a.log");
  fs::create_directory(root_ + "/elsewhere");
  fs::remove(target_);
  fs::create_directory_symlink(root_ + "/elsewhere", target_);
  EXPECT_EQ(copy().code, 1);
  EXPECT_EQ(collect({"output", "9", "9", target_, "n", "echo", "x"}).code, 1);
  EXPECT_THAT(namesIn(root_ + "/elsewhere"), IsEmpty());
  fs::remove(target_);
  ASSERT_EQ(::mkfifo(target_.c_str(), 0666), 0);
  EXPECT_EQ(copy().code, 1);
}

TEST_F(CollectLogs, TargetOfAnotherUserIsRefused) {
  put("a.log");
  ASSERT_EQ(::chown(target_.c_str(), kAnotherUser, kAnotherUser), 0);
  fs::permissions(target_, fs::perms::all);
  const Ended ended = copy();
  EXPECT_EQ(ended.code, 1);
  EXPECT_EQ(ended.error, "collectlogs: " + source_ + " to " + target_ + ": Operation not permitted\n");
  EXPECT_EQ(collect({"archive", target_, root_ + "/desktop", "n", "echo", "x"}).code, 1);
  EXPECT_THAT(namesIn(target_), IsEmpty());
  EXPECT_FALSE(fs::exists(root_ + "/desktop"));
  EXPECT_EQ(fs::status(target_).permissions(), fs::perms::all);
}

TEST_F(CollectLogs, IncompleteCopyOnFullDiskIsRemoved) {
  ASSERT_EQ(::mount("tmpfs", target_.c_str(), "tmpfs", 0, "size=64k"), 0);
  put("large.log", std::string(1'000'000, 'x'), 1h);
  put("small.log", "text", 2h);
  const Ended ended = copy("2000000");
  EXPECT_EQ(ended.code, 1);
  EXPECT_THAT(ended.error, HasSubstr("No space left on device"));
  EXPECT_THAT(namesIn(target_), ElementsAre("small.log"));
  EXPECT_EQ(::umount2(target_.c_str(), MNT_DETACH), 0);
}

TEST_F(CollectLogs, FileReplacedByHardLinkBeforeOpenIsLeftOut) {
  put("a.log");
  put("b.log");
  writeFile(root_ + "/secret", "secret");
  test_support::ChildProcess shell;
  const std::string script = "read line; exec \"$0\" whole 1000 \"$1\" '*.log' \"$2\"";
  ASSERT_TRUE(shell.start({"sh", "-c", script, helper("collectlogs"), source_, target_},
                          {.input = test_support::Redirection::pipe()}));
  {
    TracedProcess collecting(shell.pid());
    ASSERT_TRUE(shell.writeLine("go"));
    ASSERT_TRUE(collecting.runToOpenOf("a.log"));
    fs::remove(source_ + "/a.log");
    fs::create_hard_link(root_ + "/secret", source_ + "/a.log");
  }
  EXPECT_TRUE(shell.wait());
  EXPECT_THAT(namesIn(target_), ElementsAre("b.log"));
}

}  // namespace
}  // namespace helper_test

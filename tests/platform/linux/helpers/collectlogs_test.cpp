#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "tests/harness/processes/file_contents.h"
#include "tests/harness/processes/file_descriptor.h"
#include "tests/harness/processes/traced_process.h"
#include "tests/platform/linux/helpers/helper_run.h"

namespace helper_test {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using test_support::contentsOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr uid_t kUser = 65534, kAnother = 65533;

std::set<std::string> namesIn(const fs::path& folder) {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.insert(entry.path().filename());
  return names;
}

// Runs the helper with a source and a target folder.
class CollectLogs : public testing::Test {
 protected:
  void SetUp() override {
    for (const std::string& folder : {source_, target_}) fs::create_directory(folder);
  }
  void TearDown() override { fs::remove_all(root_); }

  [[nodiscard]] Ended collect(const std::vector<std::string>& arguments) const {
    std::vector<std::string> argv{helper("collectlogs")};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    return run(argv);
  }
  [[nodiscard]] Ended copy(const std::string& limit = "1000", const std::string& how = "whole") const {
    return collect({how, limit, source_, "*.log", target_});
  }
  void put(const std::string& name, const std::string& text = "text") const {
    writeFile(source_ + "/" + name, text);
  }
  // `age` sets the modification time, by which the helper orders files.
  void put(const std::string& name, const std::string& text, std::chrono::seconds age) const {
    put(name, text);
    fs::last_write_time(source_ + "/" + name, fs::file_time_type::clock::now() - age);
  }
  [[nodiscard]] std::string copied(const std::string& name) const { return contentsOf(target_ + "/" + name); }

  const std::string root_ = newFolder();
  const std::string source_ = root_ + "/source";
  const std::string target_ = root_ + "/target";
};

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
  ASSERT_EQ(::chown(target_.c_str(), kAnother, kAnother), 0);
  fs::permissions(target_, fs::perms::all);
  const Ended ended = copy();
  EXPECT_EQ(ended.code, 1);
  EXPECT_THAT(ended.error, HasSubstr("Operation not permitted"));
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

// Runs the helper as an unprivileged user.
class CollectLogsOfUser : public CollectLogs {
 protected:
  void SetUp() override {
    CollectLogs::SetUp();
    fs::permissions(root_, fs::perms(0755));
    ASSERT_EQ(::chown(target_.c_str(), kUser, kUser), 0);
    ASSERT_EQ(asUser({"true"}).code, 0);
  }
  [[nodiscard]] static Ended asUser(const std::vector<std::string>& command) {
    const std::string id = std::to_string(kUser);
    std::vector<std::string> argv{"setpriv", "--reuid", id, "--regid", id, "--clear-groups", "--"};
    argv.insert(argv.end(), command.begin(), command.end());
    return run(argv);
  }
  [[nodiscard]] Ended copyAsUser() const {
    return asUser({ownHelper(), "whole", "1000", source_, "*.log", target_});
  }
  void putFor(uid_t owner, const std::string& name) const {
    put(name);
    ASSERT_EQ(::chown((source_ + "/" + name).c_str(), owner, owner), 0);
  }

 private:
  // Copies the helper, because the user may not have access to the build folder.
  [[nodiscard]] std::string ownHelper() const {
    std::string place = root_ + "/collectlogs";
    fs::copy_file(helper("collectlogs"), place, fs::copy_options::overwrite_existing);
    fs::permissions(place, fs::perms(0755));
    return place;
  }
};

TEST_F(CollectLogsOfUser, FilesOfOthersInSharedFolderAreLeftOut) {
  fs::permissions(source_, fs::perms::all | fs::perms::sticky_bit);
  putFor(kUser, "own.log");
  putFor(kAnother, "foreign.log");
  putFor(0, "system.log");
  EXPECT_EQ(copyAsUser().code, 1);
  EXPECT_THAT(namesIn(target_), ElementsAre("own.log"));
}

TEST_F(CollectLogsOfUser, FilesOfServicesInFolderOfRootAreCopied) {
  putFor(kAnother, "service.log");
  EXPECT_EQ(copyAsUser().code, 0);
  EXPECT_THAT(namesIn(target_), ElementsAre("service.log"));
}

TEST_F(CollectLogsOfUser, FilesInFolderOfAnotherUserAreLeftOut) {
  ASSERT_EQ(::chown(source_.c_str(), kAnother, kAnother), 0);
  putFor(kAnother, "a.log");
  EXPECT_EQ(copyAsUser().code, 1);
  EXPECT_THAT(namesIn(target_), IsEmpty());
}

TEST_F(CollectLogsOfUser, UnreadableFileDoesNotPreventOtherCopies) {
  putFor(0, "closed.log");
  fs::permissions(source_ + "/closed.log", fs::perms(0600));
  ASSERT_NE(asUser({"cat", source_ + "/closed.log"}).code, 0);
  putFor(kUser, "own.log");
  EXPECT_EQ(copyAsUser().code, 1);
  EXPECT_THAT(namesIn(target_), ElementsAre("own.log"));
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

TEST_F(CollectLogs, TailOfOutputIsKept) {
  const std::string script = "head -c 1000000 /dev/zero; echo the end";
  EXPECT_EQ(collect({"output", "1000", "20", target_, "n.log", "sh", "-c", script}).code, 0);
  EXPECT_EQ(copied("n.log").size(), 1000U);
  EXPECT_TRUE(copied("n.log").ends_with("the end\n"));
  EXPECT_EQ(fs::status(target_ + "/n.log").permissions(), fs::perms(0600));
}

TEST_F(CollectLogs, OutputOfLimitLengthIsKeptWhole) {
  for (const std::string text : {"12345678", "123456789"}) {
    EXPECT_EQ(collect({"output", "8", "20", target_, "n.log", "printf", text}).code, 0);
    EXPECT_EQ(copied("n.log"), text.substr(text.size() - 8));
  }
}

TEST_F(CollectLogs, EmptyOutputFailsAndLeavesEmptyFile) {
  for (const std::string command : {"true", "false", "no-such-command"}) {
    EXPECT_EQ(collect({"output", "8", "20", target_, "n.log", command}).code, 1);
    EXPECT_THAT(namesIn(target_), ElementsAre("n.log"));
    EXPECT_EQ(copied("n.log"), "");
  }
}

TEST_F(CollectLogs, OutputOfFailedCommandIsKept) {
  EXPECT_EQ(collect({"output", "8", "20", target_, "n.log", "sh", "-c", "echo text; exit 3"}).code, 0);
  EXPECT_EQ(copied("n.log"), "text\n");
}

TEST_F(CollectLogs, CommandBeyondTimeLimitIsKilledAndItsOutputKept) {
  const std::string script = "trap '' TERM; echo $$; exec sleep 1000";
  EXPECT_EQ(collect({"output", "100", "1", target_, "n.log", "sh", "-c", script}).code, 0);
  std::string process = copied("n.log");
  ASSERT_FALSE(process.empty());
  process.pop_back();
  EXPECT_FALSE(isAlive(process));
}

TEST_F(CollectLogs, RunBeyondTimeLimitKeepsOutputOfPreviousRun) {
  const std::string script = "echo entry $0; [ $0 -le 12500 ] || exec sleep 1000; echo last of $0";
  EXPECT_EQ(collect({"output", "100", "2", target_, "n.log", "sh", "-c", script}).code, 0);
  EXPECT_EQ(copied("n.log"), "entry 12500\nlast of 12500\n");
}

// For example, journalctl crashes in a journal file of an earlier day.
TEST_F(CollectLogs, FailedRunKeepsOutputOfPreviousRun) {
  for (const std::string end : {"exit 1", "kill -9 $$"}) {
    const std::string script = "echo entry $0; [ $0 -le 50000 ] || " + end;
    EXPECT_EQ(collect({"output", "100", "20", target_, "n.log", "sh", "-c", script}).code, 0);
    EXPECT_EQ(copied("n.log"), "entry 50000\n") << end;
  }
}

TEST_F(CollectLogs, WaitsForCommandAfterEndOfItsOutput) {
  const std::string script = "echo entry $0; exec >&-; i=0; while [ $i -lt 100000 ]; do i=$((i + 1)); done";
  EXPECT_EQ(collect({"output", "100", "20", target_, "n.log", "sh", "-c", script}).code, 0);
  EXPECT_EQ(copied("n.log"), "entry 200000\n");
}

TEST_F(CollectLogs, EntryCountGrowsUntilLimitOrNoNewOutput) {
  const std::string counts = root_ + "/counts";
  const auto countsAskedFor = [&](const std::string& limit, const std::string& script) {
    fs::remove(counts);
    const std::string noting = "echo $0 >>'" + counts + "'; " + script;
    EXPECT_EQ(collect({"output", limit, "20", target_, "n.log", "sh", "-c", noting}).code, 0);
    return contentsOf(counts);
  };
  EXPECT_EQ(countsAskedFor("100", "echo entry $0"), "12500\n50000\n200000\n");
  EXPECT_EQ(copied("n.log"), "entry 200000\n");
  EXPECT_EQ(countsAskedFor("5", "echo entry $0"), "12500\n");
  EXPECT_EQ(countsAskedFor("100", "echo entry"), "12500\n50000\n");
}

TEST_F(CollectLogs, CommandWithEndlessOutputIsKilled) {
  EXPECT_EQ(collect({"output", "1000", "1", target_, "n.log", "yes"}).code, 0);
  EXPECT_EQ(copied("n.log").size(), 1000U);
}

TEST_F(CollectLogs, CommandReadsEmptyInput) {
  EXPECT_EQ(collect({"output", "100", "20", target_, "n.log", "sh", "-c", "cat; echo end"}).code, 0);
  EXPECT_EQ(copied("n.log"), "end\n");
}

TEST_F(CollectLogs, IncompleteOutputOnFullDiskIsRemoved) {
  ASSERT_EQ(::mount("tmpfs", target_.c_str(), "tmpfs", 0, "size=64k"), 0);
  const Ended ended =
      collect({"output", "1000000", "20", target_, "n.log", "head", "-c", "1000000", "/dev/zero"});
  EXPECT_EQ(ended.code, 1);
  EXPECT_THAT(ended.error, HasSubstr("No space left on device"));
  EXPECT_THAT(namesIn(target_), IsEmpty());
  EXPECT_EQ(::umount2(target_.c_str(), MNT_DETACH), 0);
}

// Packs target_ of CollectLogs.
class Archiving : public CollectLogs {
 protected:
  [[nodiscard]] Ended archive(const std::string& script) const {
    return collect({"archive", target_, desktop_, "a.zip", "sh", "-c", script});
  }
  [[nodiscard]] std::string archived() const { return contentsOf(desktop_ + "/a.zip"); }

  const std::string desktop_ = root_ + "/a desktop/below";
};

TEST_F(Archiving, OutputOfCommandBecomesArchiveWithMode0600) {
  EXPECT_EQ(archive("printf packed").code, 0);
  EXPECT_THAT(namesIn(desktop_), ElementsAre("a.zip"));
  EXPECT_EQ(archived(), "packed");
  EXPECT_EQ(fs::status(desktop_ + "/a.zip").permissions(), fs::perms(0600));
  EXPECT_EQ(fs::status(desktop_).permissions(), fs::perms(0700));
}

TEST_F(Archiving, CommandWritesToRegularFile) {
  EXPECT_EQ(archive("test -f /proc/self/fd/1 && printf packed").code, 0);
  EXPECT_EQ(archived(), "packed");
}

TEST_F(Archiving, FailedCommandLeavesNoArchive) {
  for (const char* script : {"printf half; exit 12", "printf half; kill -9 $$", "exit 127"}) {
    const Ended ended = archive(script);
    EXPECT_EQ(ended.code, 1);
    EXPECT_THAT(ended.error, HasSubstr("sh has failed"));
    EXPECT_THAT(namesIn(desktop_), IsEmpty()) << script;
  }
  EXPECT_EQ(collect({"archive", target_, desktop_, "a.zip", "no-such-command"}).code, 1);
  EXPECT_THAT(namesIn(desktop_), IsEmpty());
}

TEST_F(Archiving, ArchiveWithoutUnreadableFilesIsKept) {
  EXPECT_EQ(archive("printf packed; exit 18").code, 0);
  EXPECT_EQ(archived(), "packed");
}

TEST_F(Archiving, LinkOrFifoAtItsNameIsReplacedUnopened) {
  fs::create_directories(desktop_);
  writeFile(root_ + "/spared", "spared");
  for (const char* name : {"/a.zip", "/.a.zip"}) {
    fs::create_symlink(root_ + "/spared", desktop_ + name);
    EXPECT_EQ(archive("printf packed").code, 0);
    EXPECT_EQ(archived(), "packed");
    fs::remove(desktop_ + "/a.zip");
    ASSERT_EQ(::mkfifo((desktop_ + name).c_str(), 0666), 0);
    EXPECT_EQ(archive("printf packed").code, 0);
    EXPECT_EQ(archived(), "packed");
  }
  EXPECT_EQ(contentsOf(root_ + "/spared"), "spared");
  EXPECT_THAT(namesIn(desktop_), ElementsAre("a.zip"));
}

TEST_F(Archiving, EarlierArchiveSurvivesFailure) {
  ASSERT_EQ(archive("printf earlier").code, 0);
  EXPECT_EQ(archive("printf half; exit 1").code, 1);
  EXPECT_EQ(archived(), "earlier");
}

TEST_F(Archiving, FolderAtItsNameIsKept) {
  fs::create_directories(desktop_ + "/a.zip");
  EXPECT_EQ(archive("printf packed").code, 1);
  EXPECT_THAT(namesIn(desktop_), ElementsAre("a.zip"));
  EXPECT_TRUE(fs::is_directory(desktop_ + "/a.zip"));
}

TEST_F(Archiving, FileInsteadOfTargetFolderIsReported) {
  writeFile(desktop_, "a file");
  const Ended ended = archive("printf packed");
  EXPECT_EQ(ended.code, 1);
  EXPECT_THAT(ended.error, HasSubstr("Not a directory"));
}

TEST_F(Archiving, LinkAsSourceFolderIsNotPacked) {
  fs::rename(target_, root_ + "/elsewhere");
  fs::create_directory_symlink(root_ + "/elsewhere", target_);
  EXPECT_EQ(archive("printf packed").code, 1);
  EXPECT_FALSE(fs::exists(desktop_));
}

TEST_F(CollectLogs, HelpIsPrinted) {
  const Ended ended = collect({"--help"});
  EXPECT_EQ(ended.code, 0);
  EXPECT_THAT(ended.output, testing::StartsWith("Usage: collectlogs"));
}

TEST_F(CollectLogs, UnknownSubcommandIsRefused) {
  const Ended ended = collect({"pack"});
  EXPECT_EQ(ended.code, 2);
  EXPECT_EQ(ended.error, "collectlogs: unknown subcommand \"pack\"; try collectlogs --help\n");
}

}  // namespace
}  // namespace helper_test

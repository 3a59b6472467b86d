#include <sys/mount.h>
#include <sys/stat.h>

#include "tests/platform/linux/helpers/collectlogs_fixture.h"

namespace helper_test {
namespace {

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

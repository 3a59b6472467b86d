#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <fstream>

#include "tests/tools/mainapp_fixture.h"

namespace {

using test_support::ExitStatus;
using test_support::waitUntil;
using testing::HasSubstr;
using testing::MatchesRegex;
using tools_test::kCommandPipe;
using tools_test::runToEnd;
using tools_test::toolPath;
using tools_test::writeInto;

class MainAppPipe : public tools_test::MainAppTest {
 protected:
  static struct stat statusOfPipe() {
    struct stat status {};
    EXPECT_EQ(::lstat(kCommandPipe, &status), 0);
    return status;
  }
};

TEST_F(MainAppPipe, IsCreatedWithMode0666DespiteUmask) {
  start({"/bin/sh", "-c", "umask 077; exec " + toolPath("mainapp")});
  EXPECT_TRUE(S_ISFIFO(statusOfPipe().st_mode));
  EXPECT_EQ(statusOfPipe().st_mode & 07777, 0666u);
}

TEST_F(MainAppPipe, ExistingPipeIsUsedAndKept) {
  ASSERT_EQ(::mkfifo(kCommandPipe, 0600), 0);
  const auto before = statusOfPipe();
  startReading();
  ASSERT_TRUE(writeInto(kCommandPipe, "-ton"));
  EXPECT_EQ(nextLine(), "\"-ton\"");
  app_.terminate();
  EXPECT_EQ(app_.wait(), ExitStatus{.code = 0});
  EXPECT_EQ(statusOfPipe().st_ino, before.st_ino);
  EXPECT_EQ(statusOfPipe().st_mode & 07777, 0600u);
}

TEST_F(MainAppPipe, RegularFileIsRefusedAndKept) {
  std::ofstream(kCommandPipe) << "keep me";
  const auto finished = runToEnd({toolPath("mainapp")});
  EXPECT_EQ(finished.status, ExitStatus{.code = 1});
  EXPECT_THAT(finished.error, HasSubstr("/tmp/KMPIPE already exists and is not a FIFO"));
  EXPECT_EQ(finished.output, "");
  EXPECT_EQ(test_support::contentsOf(kCommandPipe), "keep me");
}

TEST_F(MainAppPipe, SymbolicLinkIsRefused) {
  ASSERT_EQ(::mkfifo("/tmp/elsewhere", 0600), 0);
  std::filesystem::create_symlink("/tmp/elsewhere", kCommandPipe);
  EXPECT_EQ(runToEnd({toolPath("mainapp")}).status, ExitStatus{.code = 1});
  EXPECT_TRUE(S_ISLNK(statusOfPipe().st_mode));
  std::filesystem::remove("/tmp/elsewhere");
}

TEST_F(MainAppPipe, MessageIsPrintedWithTime) {
  startReading();
  ASSERT_TRUE(writeInto(kCommandPipe, "-ton"));
  EXPECT_THAT(app_.readLine().value_or(""), MatchesRegex("[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}  \"-ton\""));
}

TEST_F(MainAppPipe, MessagesOfOneReadArePrintedSeparately) {
  startReading();
  app_.signal(SIGSTOP);
  ASSERT_TRUE(waitUntil([this] { return processState() == 'T'; }));
  ASSERT_TRUE(writeInto(kCommandPipe, "-m"));
  ASSERT_TRUE(writeInto(kCommandPipe, "-u"));
  app_.signal(SIGCONT);
  EXPECT_EQ(nextLine(), "\"-m\"");
  EXPECT_EQ(nextLine(), "\"-u\"");
}

TEST_F(MainAppPipe, UnknownBytesAreEscaped) {
  startReading();
  ASSERT_TRUE(writeInto(kCommandPipe, "-ton\n"));
  EXPECT_EQ(nextLine(), "\"-ton\"");
  EXPECT_EQ(nextLine(), "\"\\x0a\"  unknown");
}

TEST_F(MainAppPipe, SleepsAfterWriterHasClosed) {
  startReading();
  ASSERT_TRUE(writeInto(kCommandPipe, "-ton"));
  EXPECT_EQ(nextLine(), "\"-ton\"");
  EXPECT_TRUE(waitUntil([this] { return processState() == 'S'; }));
}

TEST_F(MainAppPipe, ReplacedPipeIsNotRemoved) {
  startReading();
  std::filesystem::remove(kCommandPipe);
  ASSERT_EQ(::mkfifo(kCommandPipe, 0600), 0);
  app_.terminate();
  EXPECT_EQ(app_.wait(), ExitStatus{.code = 0});
  EXPECT_TRUE(std::filesystem::exists(kCommandPipe));
}

TEST_F(MainAppPipe, IsRemovedIfOutputIsClosed) {
  ASSERT_TRUE(app_.start({"/bin/sh", "-c", toolPath("mainapp") + " | head -n 1"}));
  ASSERT_EQ(app_.readLine(), "reading /tmp/KMPIPE");
  EXPECT_TRUE(
      waitUntil([] { return !writeInto(kCommandPipe, "-m") && !std::filesystem::exists(kCommandPipe); }));
}

}  // namespace

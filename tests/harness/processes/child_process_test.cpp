#include "tests/harness/processes/child_process.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <fstream>
#include <string>

#include "tests/harness/processes/wait_until.h"

namespace test_support {
namespace {

using namespace std::chrono_literals;

ChildOptions withPipes() {
  return {.input = Redirection::pipe(), .output = Redirection::pipe(), .error = Redirection::pipe()};
}

TEST(ChildProcess, ReturnsExitStatus) {
  ChildProcess child;
  ASSERT_TRUE(child.start({"sh", "-c", "exit 7"}));
  EXPECT_EQ(child.wait(), ExitStatus{.code = 7});
  EXPECT_FALSE(child.running());
}

TEST(ChildProcess, ReturnsTerminatingSignal) {
  ChildProcess child;
  ASSERT_TRUE(child.start({"sleep", "1000"}));
  EXPECT_TRUE(child.running());
  child.terminate();
  EXPECT_EQ(child.wait(), ExitStatus{.signal = SIGTERM});
}

TEST(ChildProcess, StartOfMissingProgramSetsErrno) {
  ChildProcess child;
  EXPECT_FALSE(child.start({"/no/such/program"}));
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(child.wait(0ms), std::nullopt);
}

TEST(ChildProcess, WaitEndsAtTimeout) {
  ChildProcess child;
  ASSERT_TRUE(child.start({"sleep", "1000"}));
  const auto before = std::chrono::steady_clock::now();
  EXPECT_EQ(child.wait(50ms), std::nullopt);
  const auto waited = std::chrono::steady_clock::now() - before;
  EXPECT_GE(waited, 50ms);
  EXPECT_LT(waited, 5s);
}

TEST(ChildProcess, ReadLineEndsAtTimeoutAndKeepsUnterminatedLine) {
  ChildProcess child;
  ASSERT_TRUE(child.start({"sh", "-c", "printf half; read line; echo ' and half'"}, withPipes()));
  EXPECT_EQ(child.readLine(100ms), std::nullopt);
  ASSERT_TRUE(child.writeLine("go on"));
  EXPECT_EQ(child.readLine(), "half and half");
}

TEST(ChildProcess, ReadLineReturnsUnterminatedLastLineThenNullopt) {
  ChildProcess child;
  ASSERT_TRUE(child.start({"sh", "-c", "printf 'one\\n\\nlast'"}));
  EXPECT_EQ(child.readLine(), "one");
  EXPECT_EQ(child.readLine(), "");
  EXPECT_EQ(child.readLine(), "last");
  EXPECT_EQ(child.readLine(), std::nullopt);
}

TEST(ChildProcess, OutputAndErrorOutputAreSeparate) {
  ChildProcess child;
  ASSERT_TRUE(child.start({"sh", "-c", "echo out; echo err >&2"}, withPipes()));
  EXPECT_EQ(child.readErrorLine(), "err");
  EXPECT_EQ(child.readLine(), "out");
}

TEST(ChildProcess, WaitReadsMoreThanPipeCapacity) {
  ChildProcess child;
  ASSERT_TRUE(
      child.start({"sh", "-c", "head -c 5000000 /dev/zero; head -c 3000000 /dev/zero >&2"}, withPipes()));
  EXPECT_EQ(child.wait(), ExitStatus{.code = 0});
  EXPECT_EQ(child.takeOutput().size(), 5000000U);
  EXPECT_EQ(child.takeErrorOutput().size(), 3000000U);
}

TEST(ChildProcess, WaitIgnoresPipesHeldByGrandchildren) {
  ChildProcess child;
  ASSERT_TRUE(child.start({"sh", "-c", "sleep 1000 & echo $!"}));
  EXPECT_EQ(child.wait(), ExitStatus{.code = 0});
  ::kill(std::stoi(child.takeOutput()), SIGKILL);
}

TEST(ChildProcess, EnvironmentIsChangedAndUnset) {
  ::setenv("CHILD_PROCESS_TEST_GONE", "there", 1);
  ::setenv("CHILD_PROCESS_TEST_CHANGED", "before", 1);
  ChildProcess child;
  ASSERT_TRUE(child.start(
      {"sh", "-c", "echo ${CHILD_PROCESS_TEST_GONE-unset} $CHILD_PROCESS_TEST_CHANGED $HOME"},
      {.environment = {{"CHILD_PROCESS_TEST_GONE", std::nullopt}, {"CHILD_PROCESS_TEST_CHANGED", "after"}}}));
  EXPECT_EQ(child.readLine(), "unset after " + std::string(::getenv("HOME")));
}

TEST(ChildProcess, StreamsAreRedirectedToFiles) {
  std::ofstream("/tmp/child_input") << "from the file\n";
  ChildProcess child;
  ASSERT_TRUE(child.start({"sh", "-c", "cat; pwd >&2"}, {.workingDirectory = "/usr",
                                                         .input = Redirection::file("/tmp/child_input"),
                                                         .output = Redirection::file("/tmp/child_output"),
                                                         .error = Redirection::pipe()}));
  EXPECT_EQ(child.readErrorLine(), "/usr");
  EXPECT_EQ(child.wait(), ExitStatus{.code = 0});
  std::ifstream file("/tmp/child_output");
  std::string line;
  std::getline(file, line);
  EXPECT_EQ(line, "from the file");
}

TEST(ChildProcess, WriteToExitedChildFailsWithoutSignal) {
  ChildProcess child;
  ASSERT_TRUE(child.start({"true"}, withPipes()));
  ASSERT_TRUE(child.wait());
  EXPECT_FALSE(child.writeLine("hello?"));
}

TEST(ChildProcess, ClosingInputEndsReader) {
  ChildProcess child;
  ASSERT_TRUE(child.start({"cat"}, withPipes()));
  ASSERT_TRUE(child.writeLine("line"));
  child.closeInput();
  EXPECT_EQ(child.wait(), ExitStatus{.code = 0});
  EXPECT_EQ(child.takeOutput(), "line\n");
}

TEST(ChildProcess, DestructorKillsAndReaps) {
  pid_t pid = -1;
  {
    ChildProcess child;
    ASSERT_TRUE(child.start({"sh", "-c", "trap '' TERM; echo ready; while :; do sleep 1000; done"}));
    ASSERT_EQ(child.readLine(), "ready");
    pid = child.pid();
  }
  EXPECT_EQ(::kill(pid, 0), -1);
  EXPECT_EQ(errno, ESRCH);
}

TEST(ChildProcess, MoveAssignmentKillsPreviousChild) {
  ChildProcess first;
  ASSERT_TRUE(first.start({"sleep", "1000"}));
  const pid_t killed = first.pid();
  ASSERT_TRUE(first.start({"echo", "second"}));
  EXPECT_EQ(::kill(killed, 0), -1);
  EXPECT_EQ(first.readLine(), "second");
}

TEST(ChildProcess, StartsWithDefaultSignals) {
  ::signal(SIGUSR2, SIG_IGN);
  ChildProcess child;
  ASSERT_TRUE(child.start({"sh", "-c", "grep SigIgn /proc/$$/status"}));
  const std::string line = child.readLine().value_or("");
  ASSERT_THAT(line, testing::StartsWith("SigIgn:\t"));
  // The C library reserves signals above 31.
  EXPECT_EQ(std::stoull(line.substr(8), nullptr, 16) & 0x7fffffffU, 0U);
  ::signal(SIGUSR2, SIG_DFL);
}

TEST(ChildProcess, InheritsNoDescriptorOfCaller) {
  const FileDescriptor inheritable(::open("/dev/null", O_RDONLY));
  const FileDescriptor high(::dup2(inheritable.get(), 77));
  ChildProcess child;
  ASSERT_TRUE(child.start({"sh", "-c", "ls /proc/self/fd | tr '\\n' ' '"}));
  EXPECT_EQ(child.readLine(), "0 1 2 3 ");
}

TEST(WaitUntil, EndsAtTimeout) {
  const auto before = std::chrono::steady_clock::now();
  EXPECT_FALSE(waitUntil([] { return false; }, 30ms));
  EXPECT_GE(std::chrono::steady_clock::now() - before, 30ms);
}

TEST(WaitUntil, EvaluatesPredicateOnceWithZeroTimeout) {
  EXPECT_TRUE(waitUntil([] { return true; }, 0ms));
}

TEST(WaitUntil, SeesChange) {
  int asked = 0;
  EXPECT_TRUE(waitUntil([&] { return ++asked == 3; }));
}

}  // namespace
}  // namespace test_support

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>

#include "tests/tools/mainapp_fixture.h"

namespace {

using test_support::ExitStatus;
using testing::HasSubstr;
using tools_test::kCommandPipe;
using tools_test::runToEnd;
using tools_test::toolPath;
using tools_test::writeInto;

class MainAppEnd : public tools_test::MainAppTest {};

TEST_F(MainAppEnd, UntilWaitsForGivenMessage) {
  startReading({"--until", "-toff"});
  ASSERT_TRUE(writeInto(kCommandPipe, "-ton"));
  EXPECT_EQ(nextLine(), "\"-ton\"");
  EXPECT_TRUE(app_.running());
  ASSERT_TRUE(writeInto(kCommandPipe, "-toff"));
  EXPECT_EQ(nextLine(), "\"-toff\"");
  EXPECT_EQ(app_.wait(), ExitStatus{.code = 0});
}

TEST_F(MainAppEnd, UntilPrintsRestOfLastRead) {
  startReading({"--until", "-m"});
  ASSERT_TRUE(writeInto(kCommandPipe, "-m-u"));
  EXPECT_EQ(nextLine(), "\"-m\"");
  EXPECT_EQ(nextLine(), "\"-u\"");
  EXPECT_EQ(app_.wait(), ExitStatus{.code = 0});
}

TEST_F(MainAppEnd, UntilRejectsUnknownMessage) {
  const auto finished = runToEnd({toolPath("mainapp"), "--until", "-tno"});
  EXPECT_EQ(finished.status, ExitStatus{.code = 2});
  EXPECT_THAT(finished.error, HasSubstr("\"-tno\" is not a message of the agent"));
  EXPECT_FALSE(std::filesystem::exists(kCommandPipe));
}

TEST_F(MainAppEnd, TimeoutEndsUntilWithStatusThree) {
  const auto begin = std::chrono::steady_clock::now();
  startReading({"--until", "-toff", "--timeout", "0.3"});
  ASSERT_TRUE(writeInto(kCommandPipe, "-ton"));
  EXPECT_EQ(app_.wait(), ExitStatus{.code = 3});
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(300));
  EXPECT_FALSE(std::filesystem::exists(kCommandPipe));
}

TEST_F(MainAppEnd, MessageBeforeTimeoutExitsWithZero) {
  startReading({"--until", "-ton", "--timeout", "1000"});
  ASSERT_TRUE(writeInto(kCommandPipe, "-ton"));
  EXPECT_EQ(app_.wait(), ExitStatus{.code = 0});
}

TEST_F(MainAppEnd, QuitExitsAndRemovesPipe) {
  startReading();
  ASSERT_TRUE(app_.writeLine("quit"));
  EXPECT_EQ(app_.wait(), ExitStatus{.code = 0});
  EXPECT_FALSE(std::filesystem::exists(kCommandPipe));
}

TEST_F(MainAppEnd, QuitDuringUntilExitsWithOne) {
  startReading({"--until", "-ton"});
  ASSERT_TRUE(app_.writeLine("quit"));
  EXPECT_EQ(app_.wait(), ExitStatus{.code = 1});
}

TEST_F(MainAppEnd, EndOfInputDoesNotExit) {
  startReading();
  app_.closeInput();
  ASSERT_TRUE(writeInto(kCommandPipe, "-ton"));
  EXPECT_EQ(nextLine(), "\"-ton\"");
  ASSERT_TRUE(writeInto(kCommandPipe, "-m"));
  EXPECT_EQ(nextLine(), "\"-m\"");
  EXPECT_TRUE(app_.running());
}

TEST_F(MainAppEnd, SleepsAfterEndOfInput) {
  startReading();
  app_.closeInput();
  EXPECT_TRUE(test_support::waitUntil([this] { return processState() == 'S'; }));
}

TEST_F(MainAppEnd, UnknownCommandIsReported) {
  startReading();
  ASSERT_TRUE(app_.writeLine("sned -non"));
  EXPECT_THAT(app_.readErrorLine().value_or(""), HasSubstr("unknown command \"sned\""));
  ASSERT_TRUE(app_.writeLine("help"));
  EXPECT_THAT(app_.readLine().value_or(""), HasSubstr("send TEXT"));
}

class MainAppSignal : public tools_test::MainAppTest, public testing::WithParamInterface<int> {};

TEST_P(MainAppSignal, RemovesPipeAndExitsWithZero) {
  startReading();
  app_.signal(GetParam());
  EXPECT_EQ(app_.wait(), ExitStatus{.code = 0});
  EXPECT_FALSE(std::filesystem::exists(kCommandPipe));
}

INSTANTIATE_TEST_SUITE_P(Signals, MainAppSignal, testing::Values(SIGINT, SIGTERM));

}  // namespace

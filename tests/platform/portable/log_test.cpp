#include "platform/log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <syslog.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <thread>
#include <vector>

#include "tests/harness/processes/forked_call.h"
#include "tests/harness/processes/stream_capture.h"
#include "tests/harness/processes/syslog_socket.h"

namespace {

using platform::LogPriority;
using test_support::ExitStatus;
using test_support::StreamCapture;
using test_support::SyslogMessage;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

class Log : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(log_.valid()); }

  static auto entry(int priority, const std::string& text) {
    return testing::AllOf(testing::Field("priority", &SyslogMessage::priority, priority),
                          testing::Field("text", &SyslogMessage::text, text));
  }

  test_support::SyslogSocket log_;
};

template <typename Call>
std::string errorsOf(Call call) {
  StreamCapture errors(STDERR_FILENO);
  call();
  return errors.end();
}

TEST_F(Log, SystemLogMapsErrorAndInfoToSyslogPriorities) {
  platform::systemLog(LogPriority::Error, "an error");
  platform::systemLog(LogPriority::Info, "progress");
  EXPECT_THAT(log_.messages(), ElementsAre(entry(LOG_ERR, "an error"), entry(LOG_INFO, "progress")));
}

TEST_F(Log, SystemLogDoesNotInterpretPercentSigns) {
  platform::systemLog(LogPriority::Error, "100% %s%n%d %m %%");
  EXPECT_THAT(log_.messages(), ElementsAre(entry(LOG_ERR, "100% %s%n%d %m %%")));
}

TEST_F(Log, SystemLogPassesNonAsciiAndInvalidUtf8) {
  platform::systemLog(LogPriority::Info, "\u00e4\u65e5\xff");
  EXPECT_THAT(log_.messages(), ElementsAre(entry(LOG_INFO, "\u00e4\u65e5\xff")));
}

TEST_F(Log, SystemLogRespectsLengthOfStringView) {
  platform::systemLog(LogPriority::Info, std::string_view("shown, not shown").substr(0, 5));
  EXPECT_THAT(log_.messages(), ElementsAre(entry(LOG_INFO, "shown")));
}

TEST_F(Log, SystemLogDoesNotTruncateLongText) {
  const std::string text(8000, 'x');
  platform::systemLog(LogPriority::Info, text);
  EXPECT_THAT(log_.messages(), ElementsAre(entry(LOG_INFO, text)));
}

TEST_F(Log, SystemLogUsesIdentityOfOpenlog) {
  ::openlog("TovalinTray", LOG_PID, LOG_USER);
  platform::systemLog(LogPriority::Info, "text");
  ::closelog();
  EXPECT_THAT(log_.messages(),
              ElementsAre(SyslogMessage{
                  .priority = LOG_INFO, .facility = LOG_USER, .ident = "TovalinTray", .text = "text"}));
}

TEST_F(Log, SystemLogWritesNothingToStandardStreams) {
  StreamCapture output(STDOUT_FILENO);
  EXPECT_EQ(errorsOf([] { platform::systemLog(LogPriority::Error, "text"); }), "");
  EXPECT_EQ(output.end(), "");
}

TEST(LogWithoutSyslogSocket, SystemLogIsDiscardedSilently) {
  EXPECT_FALSE(std::filesystem::exists("/dev/log"));
  EXPECT_EQ(errorsOf([] { platform::systemLog(LogPriority::Error, "text"); }), "");
}

TEST_F(Log, ErrorLogAppendsErrnoText) {
  const std::string errors = errorsOf([] {
    errno = ENOENT;
    platform::errorLog("create file failed");
  });
  EXPECT_EQ(errors, "create file failed: No such file or directory\n");
  EXPECT_THAT(log_.messages(), IsEmpty());
}

TEST_F(Log, ErrorLogWithErrnoZeroAppendsSuccess) {
  const std::string errors = errorsOf([] {
    errno = 0;
    platform::errorLog("text");
  });
  EXPECT_EQ(errors, "text: Success\n");
}

TEST_F(Log, ErrorLogDoesNotInterpretPercentSigns) {
  const std::string errors = errorsOf([] {
    errno = EACCES;
    platform::errorLog("%s 100%");
  });
  EXPECT_EQ(errors, "%s 100%: Permission denied\n");
}

TEST_F(Log, ConsoleLogPrefixesTimeProgramAndProcessId) {
  const std::string line = errorsOf([] { platform::consoleLog("the %s text"); });
  EXPECT_THAT(line,
              MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3} TovalinTray\\[" +
                           std::to_string(::getpid()) + "\\] the %s text\n"));
  EXPECT_THAT(log_.messages(), IsEmpty());
}

TEST_F(Log, ConsoleLogUsesLocalTime) {
  const auto finished = test_support::runForked([] {
    ::setenv("TZ", "XYZ-5:30", 1);
    ::tzset();
    platform::consoleLog("text");
    return 0;
  });
  const time_t before = ::time(nullptr);
  std::tm local{};
  ASSERT_NE(::strptime(finished.error.c_str(), "%Y-%m-%d %H:%M:%S", &local), nullptr) << finished.error;
  constexpr time_t kEastOfGreenwich = 5 * 3600 + 30 * 60;
  EXPECT_LT(std::abs(::timegm(&local) - kEastOfGreenwich - before), 60);
}

TEST_F(Log, LinesOfConcurrentThreadsDoNotInterleave) {
  constexpr int kThreads = 4;
  constexpr int kLines = 500;
  const std::string text(200, '=');
  const std::string errors = errorsOf([&] {
    std::vector<std::jthread> threads;
    threads.reserve(kThreads);
    for (int i = 0; i < kThreads; ++i) {
      threads.emplace_back([&] {
        errno = 0;
        for (int line = 0; line < kLines; ++line) platform::errorLog(text);
      });
    }
  });
  std::istringstream lines(errors);
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count) ASSERT_EQ(line, text + ": Success");
  EXPECT_EQ(count, kThreads * kLines);
}

TEST_F(Log, ClosedStandardErrorIsIgnored) {
  const auto finished = test_support::runForked([] {
    ::close(STDERR_FILENO);
    platform::consoleLog("text");
    platform::errorLog("text");
    return 5;
  });
  EXPECT_EQ(finished.status, ExitStatus{.code = 5});
}

TEST_F(Log, FatalErrorWritesToStderrAndSyslogAndExitsWithOne) {
  const auto finished =
      test_support::runForked([]() -> int { platform::fatalError("can't go on: 100% %s"); });
  EXPECT_EQ(finished.status, ExitStatus{.code = 1});
  EXPECT_EQ(finished.error, "TovalinTray: can't go on: 100% %s\n");
  EXPECT_EQ(finished.output, "");
  EXPECT_THAT(log_.messages(), ElementsAre(entry(LOG_ERR, "can't go on: 100% %s")));
}

TEST_F(Log, FatalErrorFlushesStandardOutput) {
  const auto finished = test_support::runForked([]() -> int {
    std::fputs("not yet written", stdout);
    platform::fatalError("text");
  });
  EXPECT_EQ(finished.output, "not yet written");
}

TEST_F(Log, FatalErrorRunsNoExitHandlers) {
  const auto finished = test_support::runForked([]() -> int {
    std::atexit([] { std::puts("exit handler ran"); });
    platform::fatalError("text");
  });
  EXPECT_EQ(finished.status, ExitStatus{.code = 1});
  EXPECT_EQ(finished.output, "");
}

}  // namespace

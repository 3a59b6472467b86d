#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <fstream>

#include "tests/tools/mainapp_fixture.h"

namespace {

using test_support::ExitStatus;
using test_support::FileDescriptor;
using testing::HasSubstr;
using tools_test::kNotificationPipe;
using tools_test::runToEnd;
using tools_test::toolPath;

// Replaces the agent: holds the notification pipe open and makes one read at a time.
class Listener {
 public:
  Listener() {
    EXPECT_EQ(::mkfifo(kNotificationPipe, 0600), 0);
    reader_.reset(::open(kNotificationPipe, O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    writer_.reset(::open(kNotificationPipe, O_WRONLY | O_NONBLOCK | O_CLOEXEC));
  }

  // Returns the bytes of the next read, or an empty string after the timeout.
  [[nodiscard]] std::string take() const {
    const std::chrono::milliseconds patience = test_support::kPatience;
    pollfd entry{reader_.get(), POLLIN, 0};
    ::poll(&entry, 1, static_cast<int>(patience.count()));
    std::array<char, 1024> buffer{};
    const ssize_t count = ::read(reader_.get(), buffer.data(), buffer.size());
    return {buffer.data(), count > 0 ? static_cast<std::size_t>(count) : 0};
  }

 private:
  FileDescriptor reader_;
  FileDescriptor writer_;
};

class MainAppSend : public tools_test::MainAppTest {};

TEST_F(MainAppSend, SendWritesNoTerminator) {
  const Listener listener;
  startReading();
  ASSERT_TRUE(app_.writeLine("send -non"));
  EXPECT_EQ(listener.take(), "-non");
  EXPECT_EQ(nextLine(), "sent \"-non\"");
}

TEST_F(MainAppSend, AccessAndLoadingSendNoticeMessages) {
  const Listener listener;
  startReading();
  for (const auto& [command, message] :
       {std::pair("access on", "-non"), std::pair("access off", "-noff"), std::pair("loading on", "-neon"),
        std::pair("loading off", "-neoff")}) {
    ASSERT_TRUE(app_.writeLine(command));
    EXPECT_EQ(listener.take(), message);
    EXPECT_EQ(nextLine(), "sent \"" + std::string(message) + "\"");
  }
}

TEST_F(MainAppSend, NoticeArgumentMustBeOnOrOff) {
  startReading();
  ASSERT_TRUE(app_.writeLine("access maybe"));
  EXPECT_EQ(app_.readErrorLine(), "mainapp: a notice is switched on or off, not \"maybe\"");
}

TEST_F(MainAppSend, BlanksInTextAreKept) {
  const Listener listener;
  startReading();
  ASSERT_TRUE(app_.writeLine("send  a b "));
  EXPECT_EQ(listener.take(), " a b ");
}

TEST_F(MainAppSend, SendWithoutTextIsRefused) {
  const Listener listener;
  startReading();
  ASSERT_TRUE(app_.writeLine("send"));
  EXPECT_EQ(app_.readErrorLine(), "mainapp: send takes an argument: TEXT");
}

TEST_F(MainAppSend, LastLineWithoutNewlineIsRun) {
  const Listener listener;
  std::ofstream("/tmp/input") << "send -neon";
  test_support::ChildOptions options;
  options.input = test_support::Redirection::file("/tmp/input");
  ASSERT_TRUE(app_.start({toolPath("mainapp")}, options));
  EXPECT_EQ(listener.take(), "-neon");
}

TEST_F(MainAppSend, MissingReaderIsReported) {
  ASSERT_EQ(::mkfifo(kNotificationPipe, 0600), 0);
  startReading();
  ASSERT_TRUE(app_.writeLine("send -non"));
  EXPECT_EQ(app_.readErrorLine(), "mainapp: cannot send \"-non\": no process reads /tmp/KMNOTIPIPE");
  EXPECT_TRUE(app_.running());
}

TEST_F(MainAppSend, SendOptionFailsWithoutReader) {
  ASSERT_EQ(::mkfifo(kNotificationPipe, 0600), 0);
  const auto finished = runToEnd({toolPath("mainapp"), "--send", "-non"});
  EXPECT_EQ(finished.status, ExitStatus{.code = 1});
  EXPECT_THAT(finished.error, HasSubstr("no process reads /tmp/KMNOTIPIPE"));
}

TEST_F(MainAppSend, SendOptionCreatesNoPipe) {
  const auto finished = runToEnd({toolPath("mainapp"), "--send", "-non"});
  EXPECT_EQ(finished.status, ExitStatus{.code = 1});
  EXPECT_THAT(finished.error, HasSubstr("/tmp/KMNOTIPIPE does not exist"));
  EXPECT_FALSE(std::filesystem::exists(kNotificationPipe));
  EXPECT_FALSE(std::filesystem::exists(tools_test::kCommandPipe));
}

TEST_F(MainAppSend, RegularFileIsNotOverwritten) {
  std::ofstream(kNotificationPipe) << "keep me";
  EXPECT_EQ(runToEnd({toolPath("mainapp"), "--send", "-non"}).status, ExitStatus{.code = 1});
  EXPECT_EQ(test_support::contentsOf(kNotificationPipe), "keep me");
}

TEST_F(MainAppSend, RepeatedSendOptionsWriteSeparateMessages) {
  const Listener listener;
  ASSERT_TRUE(app_.start({toolPath("mainapp"), "--send", "-non", "--send", "-noff"}));
  EXPECT_EQ(listener.take(), "-non");
  EXPECT_EQ(listener.take(), "-noff");
  EXPECT_EQ(app_.wait(), ExitStatus{.code = 0});
}

TEST_F(MainAppSend, SendOptionExcludesUntil) {
  EXPECT_EQ(runToEnd({toolPath("mainapp"), "--send", "-non", "--until", "-ton"}).status,
            ExitStatus{.code = 2});
}

TEST_F(MainAppSend, DeviceAndTransferWriteNcdatMessages) {
  using namespace std::string_literals;
  const Listener listener;
  startReading();
  for (const auto& [command, message] :
       {std::pair("device 3 My Pad", "-ncdat\0\0\0\0\x03\0\0\0My Pad\0"s),
        std::pair("device 4", "-ncdat\0\0\0\0\x04\0\0\0\0"s),
        std::pair("transfer 2 4096 a b",
                  "-ncdat\0\0\0\0\0\0\0\0\x01\0\0\0\x02\0\0\0\0\x10\0\0\0\0\0\0"
                  "a b\0\0\0\0\0\0\0"s),
        std::pair("transfer 1 18446744073709551615",
                  "-ncdat\0\0\0\0\0\0\0\0\x01\0\0\0\x01\0\0\0\xff\xff\xff\xff\xff\xff\xff\xff"
                  "\0\0\0\0\0\0\0\0\0\0"s)}) {
    ASSERT_TRUE(app_.writeLine(command));
    EXPECT_EQ(listener.take(), message) << command;
  }
}

TEST_F(MainAppSend, InvalidReportIsRefused) {
  startReading();
  for (const char* command :
       {"device 5 Pad", "device Pad", "transfer 1", "transfer x 1 a", "transfer 1 1 0123456789"}) {
    ASSERT_TRUE(app_.writeLine(command));
    EXPECT_THAT(app_.readErrorLine().value_or(""), HasSubstr("mainapp: unknown report")) << command;
  }
}

}  // namespace

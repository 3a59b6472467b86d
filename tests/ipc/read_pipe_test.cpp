#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/select.h>
#include <syslog.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>

#include "ipc/notification_commands.h"
#include "ipc/notification_pipe.h"
#include "ipc/readable.h"
#include "tests/harness/processes/syslog_socket.h"

namespace {

using test_support::SyslogMessage;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;

auto entry(int priority, const std::string& text) {
  return AllOf(Field(&SyslogMessage::priority, priority), Field(&SyslogMessage::text, text));
}

class ReadPipe : public testing::Test {
 protected:
  void SetUp() override {
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_NONBLOCK | O_CLOEXEC), 0);
    reader_.reset(ends[0]);
    writer_.reset(ends[1]);
  }

  test_support::SyslogSocket log_;
  platform::FileDescriptor reader_, writer_;
  std::array<char, notificationBufferSize> buffer_{};
};

TEST_F(ReadPipe, ReturnsCountAndLogsText) {
  ASSERT_EQ(::write(writer_.get(), "-non", 4), 4);
  EXPECT_EQ(read_pipe(reader_.get(), buffer_), 4);
  EXPECT_EQ(textIn(buffer_), "-non");
  EXPECT_THAT(log_.messages(), ElementsAre(entry(LOG_INFO, "read_pipe read pipe message : -non")));
}

TEST_F(ReadPipe, EndOfFileReturnsZeroAndLogsEmptyText) {
  writer_.reset();
  EXPECT_EQ(read_pipe(reader_.get(), buffer_), 0);
  EXPECT_THAT(log_.messages(), ElementsAre(entry(LOG_INFO, "read_pipe read pipe message : ")));
}

TEST_F(ReadPipe, EmptyPipeReturnsNegatedErrnoWithoutErrorMessage) {
  EXPECT_EQ(read_pipe(reader_.get(), buffer_), -EAGAIN);
  EXPECT_THAT(log_.messages(), ElementsAre(entry(LOG_INFO, "read_pipe read pipe message : ")));
}

TEST_F(ReadPipe, OtherFailureReturnsMinusOneAndLogsError) {
  EXPECT_EQ(read_pipe(-1, buffer_), -1);
  EXPECT_THAT(log_.messages(), ElementsAre(entry(LOG_INFO, "read_pipe read pipe message : "),
                                           entry(LOG_ERR, "read_pipe read error. errno : 9")));
}

TEST_F(ReadPipe, OpenWriteEndAcceptsFifoOnly) {
  EXPECT_TRUE(openWriteEnd(reader_.get()).valid());
  const platform::FileDescriptor file(::open("/tmp/regular", O_RDONLY | O_CREAT | O_CLOEXEC, 0600));
  EXPECT_FALSE(openWriteEnd(file.get()).valid());
  const platform::FileDescriptor folder(::open("/tmp", O_RDONLY | O_CLOEXEC));
  EXPECT_FALSE(openWriteEnd(folder.get()).valid());
  EXPECT_FALSE(openWriteEnd(-1).valid());
}

TEST_F(ReadPipe, HeldWriteEndPreventsEndOfFile) {
  const platform::FileDescriptor held = openWriteEnd(reader_.get());
  writer_.reset();
  EXPECT_EQ(read_pipe(reader_.get(), buffer_), -EAGAIN);
}

TEST_F(ReadPipe, WaitWithoutDataLastsWholeTimeout) {
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(waitUntilReadable(reader_.get(), std::chrono::milliseconds(30)), Readiness::TimedOut);
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(30));
}

// select(2) handles only descriptors below FD_SETSIZE.
TEST_F(ReadPipe, WaitAcceptsDescriptorsBelowFdSetsizeOnly) {
  rlimit limit{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
  const rlimit enough{FD_SETSIZE + 1, std::max<rlim_t>(limit.rlim_max, FD_SETSIZE + 1)};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &enough), 0);
  ASSERT_EQ(::write(writer_.get(), "-non", 4), 4);
  const platform::FileDescriptor last(::dup2(reader_.get(), FD_SETSIZE - 1));
  ASSERT_EQ(last.get(), FD_SETSIZE - 1);
  EXPECT_EQ(waitUntilReadable(last.get(), std::chrono::milliseconds(30)), Readiness::Readable);
  const platform::FileDescriptor beyond(::dup2(reader_.get(), FD_SETSIZE));
  ASSERT_EQ(beyond.get(), FD_SETSIZE);
  errno = 0;
  EXPECT_EQ(waitUntilReadable(beyond.get(), std::chrono::milliseconds(30)), Readiness::Failed);
  EXPECT_EQ(errno, EINVAL);
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
}

}  // namespace

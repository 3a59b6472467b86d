#include <sys/resource.h>

#include <chrono>

#include "tests/ipc/command_pipe_fixture.h"

namespace command_pipe_test {
namespace {

const Sent kDelivered{.result = 0, .output = "", .newDescriptors = 0};

class CommandPipeMessage : public CommandPipe, public testing::WithParamInterface<const char*> {};

TEST_P(CommandPipeMessage, IsSentVerbatim) {
  makePipe();
  const FileDescriptor reader = openReader();
  EXPECT_EQ(send(GetParam()), kDelivered);
  EXPECT_EQ(readAll(reader), GetParam());
  EXPECT_THAT(log_.messages(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Vocabulary, CommandPipeMessage, testing::Values("-ton", "-toff", "-m", "-u"),
                         [](const auto& test) { return std::string(test.param + 1); });

TEST_F(CommandPipe, TonIsFourBytesWithoutTerminator) {
  makePipe();
  const FileDescriptor reader = openReader();
  EXPECT_EQ(send("-ton"), kDelivered);
  EXPECT_EQ(readAll(reader), std::string({'-', 't', 'o', 'n'}));
}

TEST_F(CommandPipe, WriterClosesAfterMessage) {
  makePipe();
  const FileDescriptor reader = openReader();
  EXPECT_EQ(send("-ton"), kDelivered);
  EXPECT_EQ(readAll(reader), "-ton");
  char byte = 0;
  EXPECT_EQ(::read(reader.get(), &byte, 1), 0) << "a writer still has the pipe open";
}

TEST_F(CommandPipe, TwoMessagesBeforeReadAreNotSeparated) {
  makePipe();
  const FileDescriptor reader = openReader();
  EXPECT_EQ(send("-ton"), kDelivered);
  EXPECT_EQ(send("-m"), kDelivered);
  EXPECT_EQ(readAll(reader), "-ton-m");
}

TEST_F(CommandPipe, PausesTenMillisecondsBeforeWrite) {
  makePipe();
  const FileDescriptor reader = openReader();
  const auto before = std::chrono::steady_clock::now();
  EXPECT_EQ(send("-ton"), kDelivered);
  EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(10));
}

TEST_F(CommandPipe, RegularFileIsOverwrittenAtStart) {
  makeFile("0123456789");
  EXPECT_EQ(send("-ton"), kDelivered);
  EXPECT_EQ(fileContents(), "-ton456789");
  EXPECT_THAT(log_.messages(), IsEmpty());
}

TEST_F(CommandPipe, SecondMessageToRegularFileIsNotAppended) {
  makeFile("");
  EXPECT_EQ(send("-toff"), kDelivered);
  EXPECT_EQ(send("-m"), kDelivered);
  EXPECT_EQ(fileContents(), "-moff");
}

TEST_F(CommandPipe, ShortWriteIsSuccess) {
  makeFile("");
  const auto finished = test_support::runForked([] {
    const rlimit twoBytes{2, 2};
    ::setrlimit(RLIMIT_FSIZE, &twoBytes);
    return sendPipeMsg("-ton") == 0 ? 0 : 1;
  });
  EXPECT_EQ(finished.status, test_support::ExitStatus{.code = 0});
  EXPECT_EQ(finished.output, "");
  EXPECT_EQ(fileContents(), "-t");
  EXPECT_THAT(log_.messages(), IsEmpty());
}

}  // namespace
}  // namespace command_pipe_test

#include <sys/resource.h>
#include <sys/select.h>
#include <sys/time.h>

#include <cerrno>
#include <functional>

#include "tests/ipc/command_pipe_fixture.h"

namespace {

std::function<void()> duringThePause;

}  // namespace

// Interposes select(2), so that a case can act between open() and write().
int select(int count, fd_set* readable, fd_set* writable, fd_set* exceptional, timeval* wait) {
  if (duringThePause) duringThePause();
  const timespec time{wait->tv_sec, wait->tv_usec * 1000};
  return ::pselect(count, readable, writable, exceptional, &time, nullptr);
}

namespace command_pipe_test {
namespace {

using test_support::ExitStatus;
using test_support::runForked;

Sent failed(const std::string& text, int result) {
  return {.result = result, .output = text + "\n", .newDescriptors = 0};
}

// Returns a descriptor of a full pipe, open for reading and writing.
FileDescriptor fullPipe(const char* path) {
  FileDescriptor pipe(::open(path, O_RDWR | O_NONBLOCK | O_CLOEXEC));
  const std::string block(4096, '.');
  while (::write(pipe.get(), block.data(), block.size()) > 0) continue;
  while (::write(pipe.get(), block.data(), 1) > 0) continue;
  return pipe;
}

// Runs in a child process: sends "-ton" and returns the negated result as its status.
int sendForked() {
  const Sent sent = send("-ton");
  std::fputs(sent.output.c_str(), stdout);
  return sent.newDescriptors == 0 ? -sent.result : 255;
}

TEST_F(CommandPipe, WithoutReaderMessageIsLost) {
  makePipe();
  EXPECT_EQ(send("-ton"), failed("open pipe failed. errno : 6", -6));
  EXPECT_THAT(log_.messages(), ElementsAre(error("open pipe failed. errno : 6")));
  EXPECT_EQ(readAll(openReader()), "");
}

TEST_F(CommandPipe, SyslogIsWrittenBeforeStandardOutput) {
  makePipe();
  ASSERT_EQ(::mkfifo("/tmp/output", 0600), 0);
  const FileDescriptor output = fullPipe("/tmp/output");
  test_support::ForkedCall sender([] {
    const FileDescriptor full(::open("/tmp/output", O_WRONLY));
    ::dup2(full.get(), STDOUT_FILENO);
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    return -sendPipeMsg("-ton");
  });
  EXPECT_TRUE(log_.waitFor("open pipe failed. errno : 6"))
      << "the failure was not logged before the blocking printf";
  EXPECT_EQ(sender.wait(std::chrono::milliseconds(0)).status, std::nullopt);

  std::string written;
  ASSERT_TRUE(test_support::waitUntil([&] { return (written += readAll(output)).ends_with('\n'); }));
  EXPECT_EQ(written.substr(written.find_first_not_of('.')), "open pipe failed. errno : 6\n");
  EXPECT_EQ(sender.wait().status, ExitStatus{.code = 6});
  std::filesystem::remove("/tmp/output");
}

TEST_F(CommandPipe, MissingPipeIsNotCreated) {
  EXPECT_EQ(send("-ton"), failed("open pipe failed. errno : 2", -2));
  EXPECT_THAT(log_.messages(), ElementsAre(error("open pipe failed. errno : 2")));
  EXPECT_FALSE(std::filesystem::exists(kCommandPipe));
}

TEST_F(CommandPipe, FolderAtPathFailsOpen) {
  std::filesystem::create_directory(kCommandPipe);
  EXPECT_EQ(send("-ton"), failed("open pipe failed. errno : 21", -21));
  EXPECT_THAT(log_.messages(), ElementsAre(error("open pipe failed. errno : 21")));
}

TEST_F(CommandPipe, MissingPermissionFailsOpen) {
  makePipe(0600);
  const FileDescriptor reader = openReader();
  const auto finished = runForked([] {
    if (!test_support::becomeNobody()) return test_support::kUnavailable;
    return ::access(kCommandPipe, W_OK) == 0 ? 254 : sendForked();
  });
  if (wasUnavailable(finished)) GTEST_SKIP() << "cannot change to another user";
  EXPECT_EQ(finished.status, ExitStatus{.code = EACCES});
  EXPECT_EQ(finished.output, "open pipe failed. errno : 13\n");
  EXPECT_THAT(log_.messages(), ElementsAre(error("open pipe failed. errno : 13")));
  EXPECT_EQ(readAll(reader), "");
}

TEST_F(CommandPipe, FullPipeFailsWrite) {
  makePipe();
  const FileDescriptor pipe = fullPipe(kCommandPipe);
  EXPECT_EQ(send("-ton"), failed("write error. errno : 11", -11));
  EXPECT_THAT(log_.messages(), ElementsAre(error("write error. errno : 11")));
  EXPECT_EQ(readAll(pipe).find_first_not_of('.'), std::string::npos);
}

TEST_F(CommandPipe, ReaderClosedBetweenOpenAndWriteFailsWrite) {
  makePipe();
  FileDescriptor reader = openReader();
  duringThePause = [&] { reader.reset(); };
  const Sent sent = send("-ton");
  duringThePause = nullptr;
  // The closed descriptor is the reader's.
  EXPECT_EQ(sent, (Sent{.result = -32, .output = "write error. errno : 32\n", .newDescriptors = -1}));
  EXPECT_THAT(log_.messages(), ElementsAre(error("write error. errno : 32")));
}

TEST_F(CommandPipe, SignalDuringPauseFailsSelect) {
  makePipe();
  const FileDescriptor reader = openReader();
  const auto finished = runForked([] {
    // A timer of 3 ms fires within the 10 ms pause; SA_RESTART restarts all other calls.
    struct sigaction action {};
    action.sa_handler = [](int) {};
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGALRM, &action, nullptr);
    const itimerval everyFewMilliseconds{{0, 3'000}, {0, 3'000}};
    ::setitimer(ITIMER_REAL, &everyFewMilliseconds, nullptr);
    return sendForked();
  });
  EXPECT_EQ(finished.status, ExitStatus{.code = EINTR});
  EXPECT_EQ(finished.output, "select failed. errno : 4\n");
  EXPECT_THAT(log_.messages(), ElementsAre(error("select failed. errno : 4")));
  EXPECT_EQ(readAll(reader), "") << "the message was written after a failed select";
}

TEST_F(CommandPipe, DescriptorBeyondFdSetsizeFailsSelect) {
  makeFile("kept");
  const auto finished = runForked([] {
    const rlimit enough{FD_SETSIZE + 64, FD_SETSIZE + 64};
    if (::setrlimit(RLIMIT_NOFILE, &enough) != 0) return test_support::kUnavailable;
    int last = STDERR_FILENO;
    while (last < FD_SETSIZE) last = ::dup(STDERR_FILENO);
    return sendForked();
  });
  if (wasUnavailable(finished)) GTEST_SKIP() << "cannot raise the limit of open files";
  EXPECT_EQ(finished.status, ExitStatus{.code = EINVAL});
  EXPECT_EQ(finished.output, "select failed. errno : 22\n");
  EXPECT_THAT(log_.messages(), ElementsAre(error("select failed. errno : 22")));
  EXPECT_EQ(fileContents(), "kept");
}

TEST_F(CommandPipe, FileSizeLimitFailsWrite) {
  makeFile("");
  const auto finished = runForked([] {
    ::signal(SIGXFSZ, SIG_IGN);
    const rlimit nothing{0, 0};
    ::setrlimit(RLIMIT_FSIZE, &nothing);
    return -sendPipeMsg("-ton");
  });
  EXPECT_EQ(finished.status, ExitStatus{.code = EFBIG});
  EXPECT_THAT(log_.messages(), ElementsAre(error("write error. errno : 27")));
}

TEST_F(CommandPipe, WithoutSyslogFailureIsPrintedToStandardOutput) {
  const auto finished = runForked([] {
    ::closelog();
    std::filesystem::remove("/dev/log");
    return sendForked();
  });
  EXPECT_EQ(finished.status, ExitStatus{.code = ENOENT});
  EXPECT_EQ(finished.output, "open pipe failed. errno : 2\n");
}

}  // namespace
}  // namespace command_pipe_test

#include "platform/linux/application/signal_pipe.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <functional>

#include <QCoreApplication>

#include "tests/harness/processes/forked_call.h"
#include "tests/harness/processes/refused_call.h"

namespace {

using test_support::ExitStatus;

// Number of following write(2) calls that fail with ENOMEM.
int failingWrites = 0;

}  // namespace

// Interposes write(2) of the C library.
ssize_t write(int descriptor, const void* bytes, std::size_t size) {
  if (failingWrites > 0) {
    --failingWrites;
    errno = ENOMEM;
    return -1;
  }
  return ::syscall(SYS_write, descriptor, bytes, size);
}

namespace {

// Runs a child that raises signals before its event loop starts. It exits with 7 when the loop handles one of
// them.
auto runUntilItIsServed(const std::function<void()>& raiseSignals) {
  return test_support::runForked([&] {
    int argc = 1;
    char name[] = "test";
    char* argv[] = {name, nullptr};
    QCoreApplication application(argc, argv);
    const platform::SignalPipe pipe([] { QCoreApplication::exit(7); });
    raiseSignals();
    return QCoreApplication::exec();
  });
}

TEST(SignalPipe, WithoutDescriptorsProcessExitsWithMessage) {
  const auto finished = test_support::runForked([] {
    const rlimit noMore{3, 3};
    if (::setrlimit(RLIMIT_NOFILE, &noMore) != 0) return 0;
    const platform::SignalPipe pipe([] {});
    return 0;
  });
  EXPECT_EQ(finished.status, ExitStatus{.code = 1});
  EXPECT_EQ(finished.error, "TovalinTray: cannot create the signal pipe: Too many open files\n");
}

TEST(SignalPipe, FailedSigactionExitsWithMessage) {
  const auto finished = test_support::runForked([] {
    const bool refused =
        withRefusedCall(SYS_rt_sigaction, EPERM, [] { const platform::SignalPipe pipe([] {}); });
    return refused ? 0 : 2;
  });
  EXPECT_EQ(finished.status, ExitStatus{.code = 1});
  EXPECT_THAT(finished.error,
              testing::EndsWith("TovalinTray: cannot install a signal handler: Operation not permitted\n"));
}

TEST(SignalPipe, SignalIsHandledAfterFailedWrites) {
  const auto finished = runUntilItIsServed([] {
    failingWrites = 3;
    ::raise(SIGTERM);
    failingWrites = 0;
  });
  EXPECT_EQ(finished.status, ExitStatus{.code = 7});
}

TEST(SignalPipe, FullPipeDoesNotBlockSignalHandler) {
  const auto finished = runUntilItIsServed([] {
    for (int i = 0; i < 100'000; ++i) ::raise(SIGTERM);
  });
  EXPECT_EQ(finished.status, ExitStatus{.code = 7});
}

}  // namespace

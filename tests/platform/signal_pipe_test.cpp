#include "platform/linux/signal_pipe.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "tests/ipc/forked_call.h"

namespace {

TEST(SignalPipe, WithoutDescriptorsTheProcessEndsWithAMessageInsteadOfBeingDeafToSignals) {
  const auto finished = test_support::runForked([] {
    const rlimit noMore{3, 3};
    if (::setrlimit(RLIMIT_NOFILE, &noMore) != 0) return 0;
    const platform::SignalPipe pipe([] {});
    return 0;
  });
  EXPECT_EQ(finished.status, test_support::ExitStatus{.code = 1});
  EXPECT_EQ(finished.error, "TovalinTray: no pipe to hear of signals by: Too many open files\n");
}

}  // namespace

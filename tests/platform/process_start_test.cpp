#include "platform/linux/process_start.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cstdlib>
#include <new>
#include <stdexcept>
#include <thread>

#include "tests/ipc/forked_call.h"

namespace {

using test_support::ExitStatus;
using test_support::Finished;
using test_support::runForked;
using testing::AllOf;
using testing::Field;

template <typename Error>
void fail(const Error& error) {
  throw error;
}

auto endedSaying(const std::string& text) {
  return AllOf(Field("status", &Finished::status, ExitStatus{.code = 1}),
               Field("error", &Finished::error, "TovalinTray: " + text + "\n"));
}

TEST(ProcessStart, WantOfMemoryOnAnyThreadEndsTheProcessWithItsName) {
  for (const bool onThread : {false, true}) {
    EXPECT_THAT(runForked([=]() -> int {
                  platform::prepareProcess();
                  const auto ask = []() noexcept { fail(std::bad_alloc()); };
                  if (!onThread) ask();
                  std::thread(ask).join();
                  return 0;
                }),
                endedSaying("out of memory"));
  }
}

TEST(ProcessStart, WantOfMemoryIsToldWithoutMemory) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the address sanitizer takes all of the address space";
#endif
  EXPECT_THAT(runForked([]() noexcept -> int {
                platform::prepareProcess();
                const rlimit nothing{0, 0};
                ::setrlimit(RLIMIT_AS, &nothing);
                // Until also the smallest piece is refused.
                for (std::size_t size = std::size_t{1} << 20; size > 0;) {
                  void* volatile const taken = std::malloc(size);
                  if (taken == nullptr) size /= 2;
                }
                fail(std::bad_alloc());
                return 0;
              }),
              endedSaying("out of memory"));
}

TEST(ProcessStart, AnErrorThatNobodyExpectsIsToldInItsOwnWords) {
  EXPECT_THAT(runForked([]() noexcept -> int {
                platform::prepareProcess();
                fail(std::runtime_error("its own words"));
                return 0;
              }),
              endedSaying("its own words"));
  EXPECT_THAT(runForked([]() noexcept -> int {
                platform::prepareProcess();
                fail(7);
                return 0;
              }),
              endedSaying("an error of an unknown kind"));
}

}  // namespace

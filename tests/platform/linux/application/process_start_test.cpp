#include "platform/linux/application/process_start.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cstdlib>
#include <new>
#include <stdexcept>
#include <thread>

#include "tests/harness/processes/forked_call.h"
#include "tests/harness/sanitizer.h"

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

void withoutCatching(void (*work)()) noexcept {
  work();
}

// Runs `work` in a child after prepareProcess(), without catching its exceptions.
Finished endOf(void (*work)()) {
  return runForked([=] {
    platform::prepareProcess();
    withoutCatching(work);
    return 0;
  });
}

auto endedSaying(const std::string& text) {
  return AllOf(Field("status", &Finished::status, ExitStatus{.code = 1}),
               Field("error", &Finished::error, "TovalinTray: " + text + "\n"));
}

TEST(ProcessStart, OutOfMemoryOnAnyThreadEndsProcessWithMessage) {
  EXPECT_THAT(endOf([] { fail(std::bad_alloc()); }), endedSaying("out of memory"));
  EXPECT_THAT(endOf([] { std::thread([] { fail(std::bad_alloc()); }).join(); }),
              endedSaying("out of memory"));
}

void takeAllMemory() {
  const rlimit nothing{0, 0};
  ::setrlimit(RLIMIT_AS, &nothing);
  // Halves the size until an allocation of one byte fails too.
  for (std::size_t size = std::size_t{1} << 20; size > 0;) {
    void* volatile const taken = std::malloc(size);
    if (taken == nullptr) size /= 2;
  }
}

TEST(ProcessStart, OutOfMemoryIsReportedWithoutAllocation) {
  if (test_support::isAddressSanitized) GTEST_SKIP() << test_support::memoryIsTheSanitizers;
  EXPECT_THAT(endOf([] {
                takeAllMemory();
                fail(std::bad_alloc());
              }),
              endedSaying("out of memory"));
}

TEST(ProcessStart, UncaughtExceptionIsReportedWithItsText) {
  EXPECT_THAT(endOf([] { fail(std::runtime_error("its own words")); }), endedSaying("its own words"));
  EXPECT_THAT(endOf([] { fail(7); }), endedSaying("unknown exception"));
}

}  // namespace

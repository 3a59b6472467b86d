#include "tests/usage/fake_waits.h"

#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <atomic>

namespace {

std::atomic<bool> isFake = false;
std::atomic<long long> frozenAt = 0;
std::atomic<long long> paused = 0;

constexpr long long nanosecondsOf(const timespec& time) {
  return static_cast<long long>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

long long realNow() {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  return nanosecondsOf(now);
}

}  // namespace

FakeWaits::FakeWaits() {
  frozenAt = realNow();
  paused = 0;
  isFake = true;
}

FakeWaits::~FakeWaits() {
  isFake = false;
}

std::chrono::nanoseconds FakeWaits::waited() const {
  return std::chrono::nanoseconds(paused);
}

// Definitions in the program precede those of the libraries. NOLINTNEXTLINE(cert-dcl58-cpp)
std::chrono::steady_clock::time_point std::chrono::steady_clock::now() noexcept {
  return time_point(std::chrono::nanoseconds(isFake ? frozenAt + paused : realNow()));
}

extern "C" int nanosleep(const timespec* time, timespec* rest) {
  if (!isFake) return static_cast<int>(::syscall(SYS_nanosleep, time, rest));
  paused += nanosecondsOf(*time);
  return 0;
}

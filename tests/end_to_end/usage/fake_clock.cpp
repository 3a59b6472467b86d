#include "tests/end_to_end/usage/fake_clock.h"

#include <ctime>
#include <filesystem>
#include <fstream>

namespace {

constexpr const char* kFile = "/tmp/fake.clock";

std::string textOf(FakeClock::Time time) {
  const std::time_t seconds = FakeClock::Time::clock::to_time_t(time);
  std::tm parts{};
  ::gmtime_r(&seconds, &parts);
  std::string text(40, '\0');
  text.resize(std::strftime(text.data(), text.size(), "@%Y-%m-%d %H:%M:%S", &parts));
  return text + " x" + std::to_string(FakeClock::rate) + "\n";
}

}  // namespace

FakeClock::FakeClock(Time begin) : time_(begin) {
  put(begin);
}

std::map<std::string, std::optional<std::string>> FakeClock::environment() {
  return {{"LD_PRELOAD", TOVALIN_FAKETIME}, {"FAKETIME_TIMESTAMP_FILE", kFile}, {"FAKETIME_NO_CACHE", "1"}};
}

FakeClock::Time FakeClock::now() const {
  const std::lock_guard lock(mutex_);
  return current();
}

FakeClock::Time FakeClock::current() const {
  const auto passed = std::chrono::steady_clock::now() - putAt_;
  return time_ + std::chrono::floor<std::chrono::seconds>(passed * rate);
}

void FakeClock::forward(std::chrono::seconds by) {
  const std::lock_guard lock(mutex_);
  put(current() + by);
}

void FakeClock::forwardTo(Time time) {
  const std::lock_guard lock(mutex_);
  if (time > current()) put(time);
}

// Replaces the file atomically: the process must not read a partially written time.
void FakeClock::put(Time time) {
  const std::string draft = std::string(kFile) + ".new";
  std::ofstream(draft) << textOf(time);
  std::filesystem::rename(draft, kFile);
  time_ = time;
  putAt_ = std::chrono::steady_clock::now();
}

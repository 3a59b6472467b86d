#pragma once

#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <string>

// The fake clocks of one process at a time, which is started with `environment()`. They run `rate` times as
// fast as the test's clock, and can be put forward while the process runs. Thread-safe.
class FakeClock {
 public:
  using Time = std::chrono::sys_seconds;
  static constexpr int rate = 4;

  explicit FakeClock(Time begin);

  [[nodiscard]] static std::map<std::string, std::optional<std::string>> environment();

  // Returns the time that the process sees; it may lag slightly.
  [[nodiscard]] Time now() const;
  [[nodiscard]] std::chrono::sys_days today() const { return std::chrono::floor<std::chrono::days>(now()); }

  void forward(std::chrono::seconds by);
  void forwardTo(Time time);
  // Call directly before starting a process: its clock continues where that of the previous process ended.
  void processStarts() { forward(std::chrono::seconds(1)); }

 private:
  [[nodiscard]] Time current() const;
  void put(Time time);

  mutable std::mutex mutex_;
  Time time_;
  std::chrono::steady_clock::time_point putAt_;
};

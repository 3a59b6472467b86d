#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <ctime>
#include <string>

#include "platform/log.h"

namespace platform {
namespace {

std::string localTimeToTheMillisecond() {
  const auto now = std::chrono::system_clock::now();
  const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
  const auto millis =
      std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
  std::tm local{};
  localtime_r(&seconds, &local);
  char text[32];
  const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
  std::snprintf(text + length, sizeof text - length, ".%03d", static_cast<int>(millis));
  return text;
}

}  // namespace

// A single write(2), so that lines of different threads do not mix.
void consoleLog(std::string_view text) {
  const std::string line = localTimeToTheMillisecond() + " TovalinTray[" + std::to_string(::getpid()) + "] " +
                           std::string(text) + "\n";
  [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, line.data(), line.size());
}

}  // namespace platform

#include "platform/log.h"

#include <sys/uio.h>
#include <syslog.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

namespace platform {
namespace {

void writeLine(const std::string& line) {
  // A single write(2) per line, so that lines of different threads do not mix.
  const std::string whole = line + "\n";
  [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, whole.data(), whole.size());
}

iovec piece(std::string_view text) {
  return {const_cast<char*>(text.data()), text.size()};
}

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

void systemLog(LogPriority priority, std::string_view text) {
  ::syslog(static_cast<int>(priority), "%.*s", static_cast<int>(text.size()), text.data());
}

void errorLog(std::string_view text) {
  const int error = errno;
  writeLine(std::string(text) + ": " + std::strerror(error));
}

void consoleLog(std::string_view text) {
  writeLine(localTimeToTheMillisecond() + " TovalinTray[" + std::to_string(::getpid()) + "] " +
            std::string(text));
}

// Allocates no memory, because the error may be out of memory.
void fatalError(std::string_view text) {
  systemLog(LogPriority::Error, text);
  constexpr std::string_view program = "TovalinTray: ";
  const std::array<iovec, 3> pieces{piece(program), piece(text), piece("\n")};
  [[maybe_unused]] const ssize_t written = ::writev(STDERR_FILENO, pieces.data(), pieces.size());
  std::fflush(stdout);
  std::_Exit(1);
}

}  // namespace platform

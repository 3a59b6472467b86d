#include "platform/log.h"

#include <sys/uio.h>
#include <syslog.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
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

}  // namespace

void systemLog(LogPriority priority, std::string_view text) {
  ::syslog(static_cast<int>(priority), "%.*s", static_cast<int>(text.size()), text.data());
}

void errorLog(std::string_view text) {
  const int error = errno;
  writeLine(std::string(text) + ": " + std::strerror(error));
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

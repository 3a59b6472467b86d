#include "ipc/command_pipe.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>

#include "ipc/readable.h"
#include "platform/file_descriptor.h"
#include "platform/log.h"

namespace {

// Frozen: doc/compatibility.md.
constexpr const char* commandPipe = "/tmp/KMPIPE";
constexpr std::chrono::milliseconds pauseBeforeWrite(10);

// Logs the failed step. Returns the negated errno.
int report(const char* step, int error) {
  const std::string text = std::string(step) + ". errno : " + std::to_string(error);
  platform::systemLog(platform::LogPriority::Error, text);
  std::printf("%s\n", text.c_str());
  return -error;
}

}  // namespace

int sendPipeMsg(const char* message) {
  platform::FileDescriptor pipe(::open(commandPipe, O_WRONLY | O_NONBLOCK | O_CLOEXEC, 0666));
  if (!pipe.valid()) return report("open pipe failed", errno);
  // A write-only descriptor never becomes readable, so this call is a pause. It ends early if the reader
  // closes the pipe.
  if (waitUntilReadable(pipe.get(), pauseBeforeWrite) == Readiness::Failed) {
    pipe.reset();
    return report("select failed", errno);
  }
  const ssize_t written = ::write(pipe.get(), message, std::strlen(message));
  pipe.reset();
  return written == -1 ? report("write error", errno) : 0;
}

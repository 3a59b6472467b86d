#include "ipc/command_pipe.h"

#include <fcntl.h>
#include <sys/select.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "platform/file_descriptor.h"
#include "platform/log.h"

namespace {

constexpr const char* commandPipe = "/tmp/KMPIPE";

// Returns the negated errno of the step that failed.
int report(const char* step, int error) {
  const std::string text = std::string(step) + ". errno : " + std::to_string(error);
  platform::systemLog(platform::LogPriority::Error, text);
  std::printf("%s\n", text.c_str());
  return -error;
}

// A write-only descriptor never gets ready to read, so this is a pause of 10 ms, cut short when the reader
// leaves.
int pauseBeforeWrite(int descriptor) {
  // select(2) can't name a descriptor beyond its set.
  if (descriptor >= FD_SETSIZE) {
    errno = EINVAL;
    return -1;
  }
  timeval wait{0, 10'000};
  fd_set readable;
  FD_ZERO(&readable);
  FD_SET(descriptor, &readable);
  return ::select(descriptor + 1, &readable, nullptr, nullptr, &wait);
}

}  // namespace

int sendPipeMsg(const char* message) {
  platform::FileDescriptor pipe(::open(commandPipe, O_WRONLY | O_NONBLOCK | O_CLOEXEC, 0666));
  if (!pipe.valid()) return report("open pipe failed", errno);
  if (pauseBeforeWrite(pipe.get()) == -1) {
    pipe.reset();
    return report("select failed", errno);
  }
  const ssize_t written = ::write(pipe.get(), message, std::strlen(message));
  pipe.reset();
  return written == -1 ? report("write error", errno) : 0;
}

#include "tools/mainapp/notification_sender.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>

#include "platform/file_descriptor.h"

namespace tools {
namespace {

using Clock = std::chrono::steady_clock;

std::string openFailure(const std::string& path) {
  if (errno == ENXIO) return "no process reads " + path;
  if (errno == ENOENT) return path + " does not exist; the agent is not running";
  return "cannot open " + path + ": " + std::strerror(errno);
}

bool isFifo(int descriptor) {
  struct stat status {};
  return ::fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode);
}

bool holdsUnreadBytes(int descriptor) {
  int count = 0;
  return ::ioctl(descriptor, FIONREAD, &count) == 0 && count > 0;
}

void waitUntilRead(int descriptor) {
  const auto deadline = Clock::now() + std::chrono::seconds(1);
  while (holdsUnreadBytes(descriptor) && Clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

}  // namespace

std::optional<std::string> sendNotification(const std::string& path, std::string_view text) {
  const platform::FileDescriptor fifo(::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC));
  if (!fifo.valid()) return openFailure(path);
  if (!isFifo(fifo.get())) return path + " is not a FIFO; nothing was written";
  const ssize_t count = ::write(fifo.get(), text.data(), text.size());
  if (count < 0 && errno == EAGAIN) return path + " is full: it is not being read";
  if (count < 0) return "cannot write " + path + ": " + std::strerror(errno);
  if (static_cast<std::size_t>(count) < text.size()) return "only a part of the text was written to " + path;
  waitUntilRead(fifo.get());
  return std::nullopt;
}

}  // namespace tools

#include "tests/harness/processes/message_fifo.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

namespace test_support {

MessageFifo::MessageFifo(std::string path) : path_(std::move(path)) {
  if (path_.empty() || ::mkfifo(path_.c_str(), 0666) != 0) return;
  ::chmod(path_.c_str(), 0666);
  // O_RDWR: with a write end of its own, the FIFO never reports end of file between two writers.
  fd_.reset(::open(path_.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
}

MessageFifo::~MessageFifo() {
  if (valid()) ::unlink(path_.c_str());
}

std::optional<MessageFifo::Received> MessageFifo::receive() {
  std::string text(1 << 16, '\0');
  const ssize_t length = ::read(fd_.get(), text.data(), text.size());
  if (length <= 0) return std::nullopt;
  text.resize(static_cast<std::size_t>(length));
  struct stat status {};
  ::fstat(fd_.get(), &status);
  const auto written =
      std::chrono::seconds(status.st_mtim.tv_sec) + std::chrono::nanoseconds(status.st_mtim.tv_nsec);
  return Received{std::move(text), std::chrono::system_clock::time_point(written)};
}

}  // namespace test_support

#include "tools/mainapp/command_fifo.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace tools {
namespace {

constexpr std::size_t kPipeCapacity = 65536;

std::string failure(const std::string& step, const std::string& path) {
  return "cannot " + step + " " + path + ": " + std::strerror(errno);
}

}  // namespace

std::unique_ptr<CommandFifo> CommandFifo::open(const std::string& path, std::string& reason) {
  std::unique_ptr<CommandFifo> fifo(new CommandFifo(path));
  reason = fifo->make();
  if (reason.empty()) reason = fifo->openBothEnds();
  if (!reason.empty()) fifo.reset();
  return fifo;
}

CommandFifo::~CommandFifo() {
  if (!made_) return;
  struct stat open {};
  struct stat there {};
  if (::fstat(reader_.get(), &open) != 0 || ::lstat(path_.c_str(), &there) != 0) return;
  if (open.st_dev == there.st_dev && open.st_ino == there.st_ino) ::unlink(path_.c_str());
}

// Returns an error text, empty on success.
std::string CommandFifo::make() {
  made_ = ::mkfifo(path_.c_str(), 0666) == 0;
  if (made_) return {};
  if (errno != EEXIST) return failure("create", path_);
  struct stat there {};
  if (::lstat(path_.c_str(), &there) != 0) return failure("examine", path_);
  if (S_ISFIFO(there.st_mode)) return {};
  return path_ + " already exists and is not a FIFO; it was not changed";
}

// Returns an error text, empty on success.
std::string CommandFifo::openBothEnds() {
  constexpr int kFlags = O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC;
  reader_.reset(::open(path_.c_str(), O_RDONLY | kFlags));
  if (!reader_.valid()) return failure("open for reading", path_);
  if (made_ && ::fchmod(reader_.get(), 0666) != 0) return failure("make writable for all users", path_);
  writer_.reset(::open(path_.c_str(), O_WRONLY | kFlags));
  if (!writer_.valid()) return failure("open for writing", path_);
  return {};
}

std::string CommandFifo::read() {
  std::array<char, kPipeCapacity> buffer{};
  const ssize_t count = ::read(reader_.get(), buffer.data(), buffer.size());
  if (count <= 0) return {};
  return {buffer.data(), static_cast<std::size_t>(count)};
}

}  // namespace tools

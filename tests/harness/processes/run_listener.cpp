#include "tests/harness/processes/run_listener.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

namespace test_support {
namespace {

// Splits NUL-terminated fields.
std::vector<std::string> fieldsOf(const std::string& bytes) {
  std::vector<std::string> fields;
  for (std::size_t start = 0; start < bytes.size();) {
    fields.emplace_back(bytes.c_str() + start);
    start += fields.back().size() + 1;
  }
  return fields;
}

}  // namespace

void CommandRun::answer(int status) const {
  const auto byte = static_cast<unsigned char>(status);
  // EPIPE is harmless: the command was killed.
  [[maybe_unused]] const ssize_t sent = ::send(connection.get(), &byte, 1, MSG_NOSIGNAL);
}

RunListener::RunListener(std::string path) : path_(std::move(path)) {
  if (path_.empty()) return;
  FileDescriptor fd(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path_.copy(address.sun_path, sizeof address.sun_path - 1);
  if (::bind(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) return;
  ::chmod(path_.c_str(), 0666);
  if (::listen(fd.get(), SOMAXCONN) == 0) socket_ = std::move(fd);
}

RunListener::~RunListener() {
  if (valid()) ::unlink(path_.c_str());
}

std::vector<int> RunListener::fds() const {
  std::vector<int> result{socket_.get()};
  for (const Connection& connection : connections_) result.push_back(connection.fd.get());
  return result;
}

std::vector<CommandRun> RunListener::takeIn() {
  acceptAll();
  std::vector<CommandRun> runs;
  for (Connection& connection : connections_) {
    connection.read();
    std::vector<std::string> fields = fieldsOf(connection.bytes);
    if (!connection.ended || fields.size() < 2) continue;
    runs.push_back({.program = fields[1],
                    .arguments = {fields.begin() + 2, fields.end()},
                    .searchPath = fields[0],
                    .connection = std::move(connection.fd)});
  }
  connections_.remove_if([](const Connection& connection) { return connection.ended; });
  return runs;
}

void RunListener::acceptAll() {
  for (;;) {
    FileDescriptor fd(::accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (!fd.valid()) return;
    connections_.push_back({.fd = std::move(fd)});
  }
}

void RunListener::Connection::read() {
  std::array<char, 4096> buffer;
  for (;;) {
    const ssize_t count = ::read(fd.get(), buffer.data(), buffer.size());
    if (count > 0) {
      bytes.append(buffer.data(), static_cast<std::size_t>(count));
    } else {
      ended = count == 0 || errno != EAGAIN;
      return;
    }
  }
}

}  // namespace test_support

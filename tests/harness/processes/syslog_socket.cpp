#include "tests/harness/processes/syslog_socket.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <utility>

namespace test_support {

SyslogSocket::SyslogSocket(const std::string& path) : socket_(path), thread_([this] { run(); }) {}

SyslogSocket::~SyslogSocket() {
  stop_.signal();
  thread_.join();
}

std::vector<SyslogMessage> SyslogSocket::messages() {
  const std::lock_guard lock(mutex_);
  collect();
  return messages_;
}

void SyslogSocket::clear() {
  const std::lock_guard lock(mutex_);
  collect();
  messages_.clear();
}

std::optional<SyslogMessage> SyslogSocket::waitFor(const Predicate& fits, std::chrono::milliseconds timeout) {
  std::unique_lock lock(mutex_);
  auto found = messages_.end();
  const bool arrived = arrived_.wait_for(lock, timeout, [&] {
    collect();
    found = std::find_if(messages_.begin(), messages_.end(), fits);
    return found != messages_.end();
  });
  return arrived ? std::optional(*found) : std::nullopt;
}

std::optional<SyslogMessage> SyslogSocket::waitFor(const std::string& text,
                                                   std::chrono::milliseconds timeout) {
  return waitFor([&](const SyslogMessage& message) { return message.text == text; }, timeout);
}

void SyslogSocket::run() {
  std::array<pollfd, 2> entries{{{socket_.fd(), POLLIN, 0}, {stop_.fd(), POLLIN, 0}}};
  while (entries[1].revents == 0) {
    ::poll(entries.data(), entries.size(), -1);
    const std::lock_guard lock(mutex_);
    collect();
    arrived_.notify_all();
  }
}

void SyslogSocket::collect() {
  while (std::optional<LogSocket::Received> received = socket_.receive()) {
    messages_.push_back(std::move(received->message));
  }
}

}  // namespace test_support

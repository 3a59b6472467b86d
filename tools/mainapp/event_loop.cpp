#include "tools/mainapp/event_loop.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "tools/common/clock_text.h"
#include "tools/common/escaped_text.h"
#include "tools/mainapp/commands.h"
#include "tools/mainapp/message_splitter.h"

namespace tools {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kEnded = 0;
constexpr int kFailed = 1;
constexpr int kTimedOut = 3;

std::string messageLine(const std::string& time, const Message& message) {
  return time + "  " + quotedText(message.text) + (message.known ? "" : "  unknown");
}

}  // namespace

EventLoop::EventLoop(std::unique_ptr<CommandFifo> fifo, const Options& options, int stopDescriptor)
    : fifo_(std::move(fifo)), until_(options.until), stopDescriptor_(stopDescriptor) {
  if (options.timeout) deadline_ = Clock::now() + *options.timeout;
}

int EventLoop::run() {
  while (!status_) waitAndServe();
  return *status_;
}

void EventLoop::waitAndServe() {
  std::array<pollfd, 3> entries{
      {{fifo_->descriptor(), POLLIN, 0}, {inputDescriptor_, POLLIN, 0}, {stopDescriptor_, POLLIN, 0}}};
  ::poll(entries.data(), entries.size(), millisecondsLeft());
  if (entries[0].revents != 0) servePipe();
  if (!status_ && entries[1].revents != 0) serveInput();
  if (!status_ && entries[2].revents != 0) endEarly();
  if (!status_ && deadline_ && Clock::now() >= *deadline_) status_ = kTimedOut;
  if (std::ferror(stdout) != 0) status_ = kFailed;
}

void EventLoop::servePipe() {
  const std::string bytes = fifo_->read();
  const std::string time = clockText(std::chrono::system_clock::now());
  for (const Message& message : splitMessages(bytes)) {
    std::puts(messageLine(time, message).c_str());
    if (message.text == until_) status_ = kEnded;
  }
}

void EventLoop::serveInput() {
  std::array<char, 4096> buffer{};
  const ssize_t count = ::read(inputDescriptor_, buffer.data(), buffer.size());
  const bool ended = count <= 0;
  if (!ended) input_.append({buffer.data(), static_cast<std::size_t>(count)});
  while (!status_) {
    const std::optional<std::string> line = input_.takeLine();
    if (!line) break;
    runLine(*line);
  }
  if (!ended || status_) return;
  inputDescriptor_ = -1;
  if (const std::optional<std::string> rest = input_.takeRest()) runLine(*rest);
}

void EventLoop::runLine(const std::string& line) {
  if (runCommand(line) == Outcome::Quit) endEarly();
}

void EventLoop::endEarly() {
  status_ = until_ ? kFailed : kEnded;
}

int EventLoop::millisecondsLeft() const {
  if (!deadline_) return -1;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline_ - Clock::now()).count();
  return static_cast<int>(std::clamp<decltype(left)>(left, 0, 1'000'000'000));
}

}  // namespace tools

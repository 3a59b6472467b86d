#include "tests/harness/processes/timeline.h"

#include <poll.h>

#include <algorithm>
#include <utility>

namespace test_support {
namespace {

struct Stamped {
  std::chrono::system_clock::time_point when = {};
  std::string text = {};
};

std::string textOf(const CommandRun& run) {
  std::string text = "run: " + run.program;
  for (const std::string& argument : run.arguments) text += " " + argument;
  return text;
}

std::vector<pollfd> entriesFor(const std::vector<int>& fds) {
  std::vector<pollfd> entries;
  entries.reserve(fds.size());
  for (const int fd : fds) entries.push_back({fd, POLLIN, 0});
  return entries;
}

}  // namespace

Timeline::Timeline(const TimelineSources& sources)
    : pipe_(sources.pipe),
      log_(sources.log),
      commands_(sources.commands),
      valid_((pipe_.valid() || sources.pipe.empty()) && (log_.valid() || sources.log.empty()) &&
             (commands_.valid() || sources.commands.empty())),
      thread_([this] { run(); }) {}

Timeline::~Timeline() {
  stop_.signal();
  thread_.join();
}

void Timeline::add(const std::string& text) {
  const std::lock_guard lock(mutex_);
  collect();
  events_.push_back({.time = std::chrono::steady_clock::now(), .text = text});
  arrived_.notify_all();
}

void Timeline::clear() {
  const std::lock_guard lock(mutex_);
  collect();
  events_.clear();
}

std::vector<TimelineEvent> Timeline::events() {
  const std::lock_guard lock(mutex_);
  collect();
  return events_;
}

std::vector<TimelineEvent> Timeline::take() {
  const std::lock_guard lock(mutex_);
  collect();
  return std::exchange(events_, {});
}

std::vector<std::string> Timeline::texts() {
  std::vector<std::string> result;
  for (const TimelineEvent& event : events()) result.push_back(event.text);
  return result;
}

std::optional<TimelineEvent> Timeline::waitFor(const Predicate& fits, std::chrono::milliseconds timeout) {
  std::unique_lock lock(mutex_);
  auto found = events_.end();
  const bool arrived = arrived_.wait_for(lock, timeout, [&] {
    collect();
    found = std::find_if(events_.begin(), events_.end(), fits);
    return found != events_.end();
  });
  return arrived ? std::optional(*found) : std::nullopt;
}

std::optional<TimelineEvent> Timeline::waitFor(const std::string& beginning,
                                               std::chrono::milliseconds timeout) {
  return waitFor([&](const TimelineEvent& event) { return event.text.starts_with(beginning); }, timeout);
}

void Timeline::setStatus(const std::string& program, int status) {
  const std::lock_guard lock(mutex_);
  statuses_[program] = status;
}

void Timeline::hold(const std::string& program) {
  const std::lock_guard lock(mutex_);
  held_.insert(program);
}

void Timeline::release(const std::string& program) {
  const std::lock_guard lock(mutex_);
  held_.erase(program);
  std::erase_if(waiting_, [&](const CommandRun& run) {
    if (run.program != program) return false;
    answer(run);
    return true;
  });
}

void Timeline::run() {
  bool stopped = false;
  while (!stopped) {
    std::vector<pollfd> entries = entriesFor(watched());
    ::poll(entries.data(), entries.size(), -1);
    stopped = entries.front().revents != 0;
    {
      const std::lock_guard lock(mutex_);
      collect();
      takeInRuns();
    }
    arrived_.notify_all();
  }
}

// The descriptor that stops the thread comes first.
std::vector<int> Timeline::watched() const {
  std::vector<int> fds{stop_.fd(), pipe_.fd(), log_.fd()};
  const std::vector<int> ofCommands = commands_.fds();
  fds.insert(fds.end(), ofCommands.begin(), ofCommands.end());
  return fds;
}

void Timeline::collect() {
  std::vector<Stamped> batch;
  if (const auto message = pipe_.receive()) batch.push_back({message->written, "pipe: " + message->text});
  while (const auto entry = log_.receive()) {
    batch.push_back(
        {entry->sent, "log " + std::to_string(entry->message.priority) + ": " + entry->message.text});
  }
  std::stable_sort(batch.begin(), batch.end(),
                   [](const Stamped& a, const Stamped& b) { return a.when < b.when; });
  const auto now = std::chrono::steady_clock::now();
  for (Stamped& entry : batch) events_.push_back({.time = now, .text = std::move(entry.text)});
}

void Timeline::takeInRuns() {
  for (CommandRun& command : commands_.takeIn()) {
    collect();
    events_.push_back({.time = std::chrono::steady_clock::now(),
                       .text = textOf(command),
                       .arguments = command.arguments,
                       .searchPath = command.searchPath});
    if (held_.contains(command.program)) {
      waiting_.push_back(std::move(command));
    } else {
      answer(command);
    }
  }
}

void Timeline::answer(const CommandRun& run) {
  const auto status = statuses_.find(run.program);
  run.answer(status == statuses_.end() ? 0 : status->second);
}

}  // namespace test_support

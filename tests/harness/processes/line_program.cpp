#include "tests/harness/processes/line_program.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace test_support {
namespace {

constexpr std::string_view kIndentation = "  ";

std::chrono::milliseconds left(std::chrono::steady_clock::time_point deadline) {
  return std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
}

// Matches "ok" and "ok more", but not "okay".
bool isWord(std::string_view line, std::string_view word) {
  return line.starts_with(word) && (line.size() == word.size() || line[word.size()] == ' ');
}

std::string afterWord(const std::string& line) {
  const std::size_t space = line.find(' ');
  return space == std::string::npos ? "" : line.substr(space + 1);
}

}  // namespace

bool LineProgram::start(const std::vector<std::string>& argv, ChildOptions options) {
  options.input = Redirection::pipe();
  options.output = Redirection::pipe();
  events_.clear();
  return process_.start(argv, options) && waitForEvent("ready");
}

LineProgram::Answer LineProgram::ask(const std::string& command, std::chrono::milliseconds timeout) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  Answer answer;
  if (!process_.writeLine(command)) return answer;
  while (const std::optional<std::string> line = process_.readLine(left(deadline))) {
    if (line->starts_with(kIndentation)) {
      answer.lines.push_back(line->substr(kIndentation.size()));
    } else if (isWord(*line, "ok") || isWord(*line, "error")) {
      answer.ok = isWord(*line, "ok");
      answer.text = afterWord(*line);
      return answer;
    } else {
      events_.push_back(*line);
    }
  }
  answer.text = "no answer to " + command;
  return answer;
}

std::optional<std::string> LineProgram::waitForEvent(const std::string& beginning,
                                                     std::chrono::milliseconds timeout) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  const auto fits = [&](const std::string& event) { return event.starts_with(beginning); };
  auto found = std::find_if(events_.begin(), events_.end(), fits);
  while (found == events_.end()) {
    std::optional<std::string> line = process_.readLine(left(deadline));
    if (!line) return std::nullopt;
    events_.push_back(std::move(*line));
    found = std::find_if(std::prev(events_.end()), events_.end(), fits);
  }
  std::string event = *found;
  events_.erase(found);
  return event;
}

void LineProgram::clearEvents() {
  while (process_.readLine(std::chrono::milliseconds(0))) continue;
  events_.clear();
}

}  // namespace test_support

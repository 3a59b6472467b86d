#pragma once

#include <chrono>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "tests/harness/processes/child_process.h"

namespace test_support {

// A helper program that takes commands on standard input and tells answers and events on standard output, a
// line each: an answer ends with "ok ..." or "error ...", its lines before that are indented by two spaces,
// all others are events.
class LineProgram {
 public:
  struct Answer {
    bool ok = false;
    std::string text = {};                // what follows the "ok" or the "error"
    std::vector<std::string> lines = {};  // without their indentation
  };

  // Starts it and waits for its event "ready".
  [[nodiscard]] bool start(const std::vector<std::string>& argv, ChildOptions options = {});

  // One command at a time. No answer within the timeout is an answer that is not ok.
  [[nodiscard]] Answer ask(const std::string& command, std::chrono::milliseconds timeout = kPatience);

  // Takes the first event that begins so out of the events, and leaves the others for later.
  [[nodiscard]] std::optional<std::string> waitForEvent(const std::string& beginning,
                                                        std::chrono::milliseconds timeout = kPatience);
  // Forgets the events so far, such as those of the way to what is to be tested.
  void clearEvents();

  [[nodiscard]] ChildProcess& process() { return process_; }

 private:
  ChildProcess process_;
  std::deque<std::string> events_;
};

}  // namespace test_support

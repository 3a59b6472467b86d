#pragma once

#include <chrono>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "tests/harness/processes/child_process.h"

namespace test_support {

// A helper program that reads commands from standard input and writes answers and events to standard output,
// one per line. An answer ends with "ok ..." or "error ..."; its earlier lines are indented by two spaces.
// All other lines are events.
class LineProgram {
 public:
  struct Answer {
    bool ok = false;
    std::string text = {};                // after "ok" or "error"
    std::vector<std::string> lines = {};  // without indentation
  };

  // Starts the program and waits for its event "ready".
  [[nodiscard]] bool start(const std::vector<std::string>& argv, ChildOptions options = {});

  // Sends one command. Returns an answer that is not ok at the timeout.
  [[nodiscard]] Answer ask(const std::string& command, std::chrono::milliseconds timeout = kPatience);

  // Removes and returns the first event with this prefix; later calls can return the others.
  [[nodiscard]] std::optional<std::string> waitForEvent(const std::string& beginning,
                                                        std::chrono::milliseconds timeout = kPatience);
  // Discards the events so far.
  void clearEvents();

  [[nodiscard]] ChildProcess& process() { return process_; }

 private:
  ChildProcess process_;
  std::deque<std::string> events_;
};

}  // namespace test_support

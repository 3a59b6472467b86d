#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/harness/processes/child_process.h"

namespace tools_test {

// Returns the path of a development tool in the build folder.
[[nodiscard]] std::string toolPath(const std::string& name);

// The exit status of a program and its output.
struct Finished {
  std::optional<test_support::ExitStatus> status;
  std::string output;
  std::string error;
};

// Runs a program and waits for its end.
[[nodiscard]] Finished runToEnd(const std::vector<std::string>& argv);

// Opens the FIFO or file at `path`, writes `text` with one write() and closes it. Returns false on failure.
[[nodiscard]] bool writeInto(const std::string& path, std::string_view text);

}  // namespace tools_test

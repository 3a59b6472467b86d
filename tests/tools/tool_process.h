#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/harness/processes/child_process.h"

namespace tools_test {

// The path of one of the development tools as built.
[[nodiscard]] std::string toolPath(const std::string& name);

// A program that has ended and what it wrote.
struct Finished {
  std::optional<test_support::ExitStatus> status;
  std::string output;
  std::string error;
};

// Runs a program to its end.
[[nodiscard]] Finished runToEnd(const std::vector<std::string>& argv);

// Writes the text into the FIFO or file at `path` in one write of one open and close; false when that failed.
[[nodiscard]] bool writeInto(const std::string& path, std::string_view text);

}  // namespace tools_test

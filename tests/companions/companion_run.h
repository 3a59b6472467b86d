#pragma once

#include <string>
#include <string_view>

#include "tests/harness/processes/child_process.h"

namespace companions_test {

// The main application's bundle as built, with the companions in it.
[[nodiscard]] std::string builtBundle();

// A program that has ended and what it wrote.
struct Finished {
  std::optional<test_support::ExitStatus> status;
  std::string output;
  std::string error;
};
[[nodiscard]] Finished runToEnd(const std::vector<std::string>& argv,
                                const test_support::ChildOptions& options = {});

// Makes a shell script at `path`, and the folders on the way.
void writeScript(const std::string& path, std::string_view commands);

}  // namespace companions_test

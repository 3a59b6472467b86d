#pragma once

#include <string>
#include <string_view>

#include "tests/harness/processes/child_process.h"

namespace companions_test {

// The main application's bundle in the build folder, with the companions.
[[nodiscard]] std::string builtBundle();

// The exit status of a program and its output.
struct Finished {
  std::optional<test_support::ExitStatus> status;
  std::string output;
  std::string error;
};
[[nodiscard]] Finished runToEnd(const std::vector<std::string>& argv,
                                const test_support::ChildOptions& options = {});

// Creates a shell script at `path`, and its parent folders.
void writeScript(const std::string& path, std::string_view commands);

}  // namespace companions_test

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/harness/processes/child_process.h"

namespace helper_test {

// The outcome of a helper process.
struct Ended {
  std::optional<int> code = {};  // nullopt: timed out or killed by a signal
  std::string output = {};
  std::string error = {};
};

// Runs a command and waits for its end. Unsets TOVALIN_ORIGINAL_PATH unless `options` sets it. Returns an
// empty Ended if the command does not start.
[[nodiscard]] Ended run(const std::vector<std::string>& argv, test_support::ChildOptions options = {});

// Return the path of a helper, or of a program of these tests.
[[nodiscard]] std::string helper(const std::string& name);
[[nodiscard]] std::string testProgram(const std::string& name);

// Creates an empty folder with a space in its name. Returns an empty string on failure.
[[nodiscard]] std::string newFolder();

// Create a file and its parent folders; writeProgram() makes an executable shell script.
void writeFile(const std::string& path, const std::string& content);
void writeProgram(const std::string& path, const std::string& script);

// Creates a symbolic link at `path` to reporting_program.
void placeReporter(const std::string& path);

// Waits for the report of reporting_program. Returns its fields, or none after the timeout.
[[nodiscard]] std::vector<std::string> awaitReport(const std::string& path);

// Returns the fields that start with `beginning`, without it.
[[nodiscard]] std::vector<std::string> fieldsAfter(const std::vector<std::string>& fields,
                                                   const std::string& beginning);

// Waits until a file ends with a newline. Returns its content without the newline, or an empty string after
// the timeout.
[[nodiscard]] std::string awaitContent(const std::string& path);

// Returns whether the process runs; false for a zombie.
[[nodiscard]] bool isAlive(const std::string& pid);

}  // namespace helper_test

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/harness/processes/child_process.h"

namespace helper_test {

// The end of a helper.
struct Ended {
  std::optional<int> code = {};  // nothing: it hangs, or a signal ended it
  std::string output = {};
  std::string error = {};
};

// Runs a command line, by default without an original PATH, and waits for its end.
[[nodiscard]] Ended run(const std::vector<std::string>& argv, test_support::ChildOptions options = {});

// Where the helper, or the program of these tests, of this name stands.
[[nodiscard]] std::string helper(const std::string& name);
[[nodiscard]] std::string testProgram(const std::string& name);

// A new empty folder, its name with a space in it.
[[nodiscard]] std::string newFolder();

// Makes a file, its folders too; `program` ones can be run.
void writeFile(const std::string& path, const std::string& content);
void writeProgram(const std::string& path, const std::string& script);

// Puts the reporting program at the path.
void placeReporter(const std::string& path);

// The fields that the reporting program has written to the file, once they are there; none when it never ran.
[[nodiscard]] std::vector<std::string> awaitReport(const std::string& path);

// Those of the fields that begin with this, without it.
[[nodiscard]] std::vector<std::string> fieldsAfter(const std::vector<std::string>& fields,
                                                   const std::string& beginning);

// The content of a file without the line's end behind it, once there is any.
[[nodiscard]] std::string awaitContent(const std::string& path);

// Whether a process runs, which one that waits to be reaped doesn't.
[[nodiscard]] bool isAlive(const std::string& pid);

}  // namespace helper_test

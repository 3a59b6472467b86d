#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <optional>
#include <ostream>
#include <string>

#include "tests/harness/processes/child_process.h"
#include "tests/harness/processes/file_descriptor.h"

namespace test_support {

// The outcome of a call in a child process; `status` is nullopt after the timeout.
struct Finished {
  std::optional<ExitStatus> status = {};
  std::string output = {};
  std::string error = {};
};
void PrintTo(const Finished& finished, std::ostream* stream);

// Runs a function in a forked child, for calls that would affect the test process: dropping privileges,
// exhausting descriptors, ending the process. The result of the function (0 to 255) becomes the exit status;
// both output streams are captured. The child has one thread. The destructor kills it.
class ForkedCall {
 public:
  explicit ForkedCall(const std::function<int()>& function);
  ForkedCall(const ForkedCall&) = delete;
  ForkedCall& operator=(const ForkedCall&) = delete;
  ~ForkedCall();

  [[nodiscard]] pid_t pid() const { return pid_; }
  [[nodiscard]] Finished wait(std::chrono::milliseconds timeout = kPatience);

 private:
  [[nodiscard]] bool reaped();

  FileDescriptor output_;
  FileDescriptor error_;
  pid_t pid_;
  std::optional<ExitStatus> status_;
};

[[nodiscard]] Finished runForked(const std::function<int()>& function);

// Exit status of a forked function that cannot set up its condition; the test is skipped.
inline constexpr int kUnavailable = 77;
[[nodiscard]] bool wasUnavailable(const Finished& finished);

// Changes the process to the user and group kNobody, for whom file permissions apply. Returns false if this
// user may not change to another.
[[nodiscard]] bool becomeNobody();
inline constexpr unsigned kNobody = 65534;

// Returns the number of open descriptors of this process.
[[nodiscard]] int openDescriptors();

}  // namespace test_support

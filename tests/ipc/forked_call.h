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

// How a call in a process of its own went; no status when it did not end in time.
struct Finished {
  std::optional<ExitStatus> status = {};
  std::string output = {};
  std::string error = {};
};
void PrintTo(const Finished& finished, std::ostream* stream);

// Runs a function in a copy of this process, for what a test must not do to itself: give up rights, use up
// descriptors, be ended. What the function returns becomes the status of the copy (0 to 255), and its two
// output streams are taken. The copy has one thread, and is killed when this object goes away.
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

// Where a forked function ends when it can't bring about what is to be tested, and the test is skipped.
inline constexpr int kNotToBeHad = 77;
[[nodiscard]] bool wasNotToBeHad(const Finished& finished);

// Goes on as a user without rights, for whom the permissions of files count. False where this user may not
// change into another.
[[nodiscard]] bool becomeNobody();
inline constexpr unsigned kNobody = 65534;

// How many descriptors this process has open.
[[nodiscard]] int openDescriptors();

}  // namespace test_support

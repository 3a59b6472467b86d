#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/harness/processes/child_options.h"
#include "tests/harness/processes/file_descriptor.h"
#include "tests/harness/processes/wait_until.h"

namespace test_support {

// How a process ended: exactly one member is set.
struct ExitStatus {
  std::optional<int> code = {};    // exit status
  std::optional<int> signal = {};  // terminating signal

  bool operator==(const ExitStatus&) const = default;
};

// A child process, killed and reaped by the destructor. For use by one thread at a time.
//
// The child starts with default signal handling and an empty signal mask, and inherits only its three
// standard streams. Every waiting call also reads the child's piped streams. Between such calls a child that
// has filled a pipe (1 MiB if the kernel grants it) blocks.
class ChildProcess {
 public:
  ChildProcess() = default;
  ChildProcess(ChildProcess&& other) noexcept;
  ChildProcess& operator=(ChildProcess&& other) noexcept;
  ~ChildProcess();

  // Runs argv[0], looked up on PATH if it contains no slash. Kills a child from an earlier start first. On
  // failure returns false and sets errno.
  [[nodiscard]] bool start(const std::vector<std::string>& argv, const ChildOptions& options = {});

  [[nodiscard]] pid_t pid() const {
    return pid_;
  }  // of the last child started; -1 before; kept after its end
  [[nodiscard]] bool running();

  // Waits for the child to end; not for the end of its pipes, which its own children may hold open. Returns
  // nullopt if it is still running at the timeout or if none was started.
  [[nodiscard]] std::optional<ExitStatus> wait(std::chrono::milliseconds timeout = kPatience);

  void signal(int number);  // does nothing once the child is reaped: its PID may be reused
  void terminate();         // SIGTERM
  void kill();              // SIGKILL

  // Returns the next line without its line break; at the end of the stream also an unterminated one. Returns
  // nullopt at the timeout, at the end of the stream, or if the stream is not piped.
  [[nodiscard]] std::optional<std::string> readLine(std::chrono::milliseconds timeout = kPatience);
  [[nodiscard]] std::optional<std::string> readErrorLine(std::chrono::milliseconds timeout = kPatience);

  // Returns all output so far that was not returned as a line.
  [[nodiscard]] std::string takeOutput();
  [[nodiscard]] std::string takeErrorOutput();

  // Returns false if the child has closed its input. Blocks while the pipe is full.
  [[nodiscard]] bool writeLine(std::string_view line);
  void closeInput();

 private:
  struct Capture {
    FileDescriptor fd;
    std::string text;

    void drain();
    [[nodiscard]] std::optional<std::string> takeLine();
  };

  [[nodiscard]] std::optional<std::string> readLineOf(Capture& capture, std::chrono::milliseconds timeout);
  void takeIn(std::chrono::steady_clock::time_point deadline);
  void reapIfEnded();

  pid_t pid_ = -1;
  FileDescriptor handle_;  // a pidfd, readable once the child has ended; invalid once it is reaped
  std::optional<ExitStatus> status_;
  FileDescriptor input_;
  Capture output_;
  Capture error_;
};

}  // namespace test_support

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

// How a process ended: one of the two is set.
struct ExitStatus {
  std::optional<int> code = {};    // it ended by itself with this status
  std::optional<int> signal = {};  // it was ended by this signal

  bool operator==(const ExitStatus&) const = default;
};

// One child process, killed and reaped when this object goes away. Use it on one thread at a time.
//
// The child starts with default signals and an empty mask, and inherits no descriptor but its three streams.
// Every waiting call also takes in what the child writes on its piped streams; between such calls a child
// that has filled a pipe (1 MiB where the kernel grants it) blocks.
class ChildProcess {
 public:
  ChildProcess() = default;
  ChildProcess(ChildProcess&& other) noexcept;
  ChildProcess& operator=(ChildProcess&& other) noexcept;
  ~ChildProcess();

  // Runs argv[0], looked up on PATH when it holds no slash. A child that is still there from an earlier start
  // is killed first. False with errno set when it can't be run.
  [[nodiscard]] bool start(const std::vector<std::string>& argv, const ChildOptions& options = {});

  [[nodiscard]] pid_t pid() const {
    return pid_;
  }  // of the last child started; -1 before; kept after its end
  [[nodiscard]] bool running();

  // Waits for the end of the child, not for the end of its pipes, which its own children may hold on to.
  // Nothing when it is still running at the timeout, or when none was started.
  [[nodiscard]] std::optional<ExitStatus> wait(std::chrono::milliseconds timeout = kPatience);

  void signal(int number);  // does nothing once the child has been reaped, so that no stranger is hit
  void terminate();         // SIGTERM
  void kill();              // SIGKILL

  // The next line without its end; at the end of the stream also an unfinished one. Nothing at the timeout,
  // at the end of the stream, or when the stream is not piped.
  [[nodiscard]] std::optional<std::string> readLine(std::chrono::milliseconds timeout = kPatience);
  [[nodiscard]] std::optional<std::string> readErrorLine(std::chrono::milliseconds timeout = kPatience);

  // All that has come so far and was not handed out as a line.
  [[nodiscard]] std::string takeOutput();
  [[nodiscard]] std::string takeErrorOutput();

  // False when the child no longer reads. Blocks while the child leaves a full pipe unread.
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
  FileDescriptor handle_;  // readable once the child has ended; invalid once it has been reaped
  std::optional<ExitStatus> status_;
  FileDescriptor input_;
  Capture output_;
  Capture error_;
};

}  // namespace test_support

#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "tools/mainapp/command_fifo.h"
#include "tools/mainapp/line_buffer.h"
#include "tools/mainapp/options.h"

namespace tools {

// Serves the command pipe and standard input until an exit condition of the options is met. For one thread.
class EventLoop {
 public:
  // `stopDescriptor` becomes readable when the loop must end. Not owned.
  EventLoop(std::unique_ptr<CommandFifo> fifo, const Options& options, int stopDescriptor);

  // Returns the program's exit status.
  [[nodiscard]] int run();

 private:
  void waitAndServe();
  void servePipe();
  void serveInput();
  void runLine(const std::string& line);
  void endEarly();
  [[nodiscard]] int millisecondsLeft() const;

  std::unique_ptr<CommandFifo> fifo_;
  std::optional<std::string> until_;
  std::optional<std::chrono::steady_clock::time_point> deadline_;
  int stopDescriptor_;
  int inputDescriptor_ = 0;  // -1 after end of file on standard input
  LineBuffer input_;
  std::optional<int> status_;  // set when the loop must end
};

}  // namespace tools

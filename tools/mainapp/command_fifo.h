#pragma once

#include <sys/types.h>

#include <memory>
#include <string>

#include "platform/file_descriptor.h"

namespace tools {

// The reader's side of the command pipe. Holds a write end of its own too: a FIFO whose last writer has
// closed reads as ready without end. Removes the FIFO when it goes away, if it made it and it still stands
// there.
class CommandFifo {
 public:
  // Makes the FIFO at `path` for everybody to write to, whatever the umask; one that is there already is used
  // as it is, and anything else there is left alone. Null with `reason` set when it can't be had.
  [[nodiscard]] static std::unique_ptr<CommandFifo> open(const std::string& path, std::string& reason);

  CommandFifo(const CommandFifo&) = delete;
  CommandFifo& operator=(const CommandFifo&) = delete;
  ~CommandFifo();

  // To be polled for reading.
  [[nodiscard]] int descriptor() const { return reader_.get(); }

  // All that has been written so far, up to what a pipe holds; empty when there is nothing. Never blocks.
  [[nodiscard]] std::string read();

 private:
  explicit CommandFifo(std::string path) : path_(std::move(path)) {}

  [[nodiscard]] std::string make();
  [[nodiscard]] std::string openBothEnds();

  std::string path_;
  platform::FileDescriptor reader_;
  platform::FileDescriptor writer_;
  bool made_ = false;
};

}  // namespace tools

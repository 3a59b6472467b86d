#pragma once

#include <sys/types.h>

#include <memory>
#include <string>

#include "platform/file_descriptor.h"

namespace tools {

// The read end of the command pipe. Also keeps a write end open, because poll(2) reports a FIFO without
// writers as ready all the time. The destructor removes the FIFO if this object created it and it is still at
// the path.
class CommandFifo {
 public:
  // Creates the FIFO at `path`, writable for all users whatever the umask. Uses an existing FIFO unchanged
  // and does not touch any other file. Returns nullptr and sets `reason` on failure.
  [[nodiscard]] static std::unique_ptr<CommandFifo> open(const std::string& path, std::string& reason);

  CommandFifo(const CommandFifo&) = delete;
  CommandFifo& operator=(const CommandFifo&) = delete;
  ~CommandFifo();

  // The descriptor to poll for reading.
  [[nodiscard]] int descriptor() const { return reader_.get(); }

  // Returns the bytes written so far, at most the capacity of a pipe; empty if there are none. Never blocks.
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

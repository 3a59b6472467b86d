#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "tests/harness/processes/file_descriptor.h"

namespace test_support {

// The reading end of a FIFO that it makes, and removes at its end. Writers find a reader for as long as it
// lives.
class MessageFifo {
 public:
  explicit MessageFifo(std::string path);
  MessageFifo(const MessageFifo&) = delete;
  MessageFifo& operator=(const MessageFifo&) = delete;
  ~MessageFifo();

  [[nodiscard]] bool valid() const { return fd_.valid(); }
  [[nodiscard]] int fd() const { return fd_.get(); }

  struct Received {
    std::string text = {};  // of all writes since the last time: nothing parts them
    std::chrono::system_clock::time_point written = {};  // the last of them; up to a clock tick early
  };
  // Nothing when nothing waits. Never blocks.
  [[nodiscard]] std::optional<Received> receive();

 private:
  std::string path_;
  FileDescriptor fd_;
};

}  // namespace test_support

#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "tests/harness/processes/file_descriptor.h"

namespace test_support {

// Creates a FIFO and reads from it; removes it in the destructor. Keeps the read end open, so that writers
// never get ENXIO.
class MessageFifo {
 public:
  explicit MessageFifo(std::string path);
  MessageFifo(const MessageFifo&) = delete;
  MessageFifo& operator=(const MessageFifo&) = delete;
  ~MessageFifo();

  [[nodiscard]] bool valid() const { return fd_.valid(); }
  [[nodiscard]] int fd() const { return fd_.get(); }

  struct Received {
    std::string text = {};  // of all writes since the last call: a FIFO does not separate them
    std::chrono::system_clock::time_point written = {};  // time of the last write; up to one clock tick early
  };
  // Returns nullopt if nothing is pending. Never blocks.
  [[nodiscard]] std::optional<Received> receive();

 private:
  std::string path_;
  FileDescriptor fd_;
};

}  // namespace test_support

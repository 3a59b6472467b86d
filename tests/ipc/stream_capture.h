#pragma once

#include <string>

#include "tests/harness/processes/file_descriptor.h"

namespace test_support {

// Takes what this process writes on one of its standard streams, for as long as it lives. One at a time for a
// stream; the C library's buffer of standard output is emptied into where it belongs at both ends.
class StreamCapture {
 public:
  explicit StreamCapture(int stream);
  StreamCapture(const StreamCapture&) = delete;
  StreamCapture& operator=(const StreamCapture&) = delete;
  ~StreamCapture();

  // All that was written so far; also after end().
  [[nodiscard]] std::string text() const;

  // Gives the stream back, and returns all that was written.
  std::string end();

 private:
  int stream_;
  FileDescriptor original_;
  FileDescriptor memory_;
};

// A file without a name, and what stands in it.
[[nodiscard]] FileDescriptor memoryFile();
[[nodiscard]] std::string contentsOf(const FileDescriptor& file);

}  // namespace test_support

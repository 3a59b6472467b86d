#pragma once

#include <string>

#include "tests/harness/processes/file_descriptor.h"

namespace test_support {

// Captures a standard stream of this process for the lifetime of the object. At most one object per stream.
// Flushes stdout at the beginning and the end, so that buffered output goes to the right place.
class StreamCapture {
 public:
  explicit StreamCapture(int stream);
  StreamCapture(const StreamCapture&) = delete;
  StreamCapture& operator=(const StreamCapture&) = delete;
  ~StreamCapture();

  // Returns all captured text; valid after end() too.
  [[nodiscard]] std::string text() const;

  // Restores the stream and returns all captured text.
  std::string end();

 private:
  int stream_;
  FileDescriptor original_;
  FileDescriptor memory_;
};

// Create an anonymous file, and return the content of one.
[[nodiscard]] FileDescriptor memoryFile();
[[nodiscard]] std::string contentsOf(const FileDescriptor& file);

}  // namespace test_support

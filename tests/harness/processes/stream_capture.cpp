#include "tests/harness/processes/stream_capture.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

namespace test_support {

FileDescriptor memoryFile() {
  FileDescriptor file(::memfd_create("stream", MFD_CLOEXEC));
  // Several threads write through one file position, which the kernel does not lock for this file; O_APPEND
  // keeps the writes from overlapping.
  ::fcntl(file.get(), F_SETFL, O_APPEND);
  return file;
}

std::string contentsOf(const FileDescriptor& file) {
  struct stat status {};
  ::fstat(file.get(), &status);
  std::string text(static_cast<std::size_t>(status.st_size), '\0');
  const ssize_t count = ::pread(file.get(), text.data(), text.size(), 0);
  text.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
  return text;
}

StreamCapture::StreamCapture(int stream)
    : stream_(stream), original_(::fcntl(stream, F_DUPFD_CLOEXEC, 3)), memory_(memoryFile()) {
  std::fflush(stdout);
  ::dup2(memory_.get(), stream_);
}

StreamCapture::~StreamCapture() {
  end();
}

std::string StreamCapture::text() const {
  std::fflush(stdout);
  return contentsOf(memory_);
}

std::string StreamCapture::end() {
  if (original_.valid()) {
    std::fflush(stdout);
    ::dup2(original_.get(), stream_);
    original_.reset();
  }
  return contentsOf(memory_);
}

}  // namespace test_support

#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace platform {

// Owns one file descriptor and closes it when it goes away; -1 stands for none. Moves, never copies. A plain
// value: any thread, but one at a time. What close reports is dropped, so a writer that must know calls fsync
// first.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  // Takes ownership of `descriptor`, as open and its kin return it: -1 makes an empty owner.
  explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
  ~FileDescriptor() { reset(); }

  FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(other.release()) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    if (this != &other) reset(other.release());
    return *this;
  }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;

  // The descriptor, still owned here; -1 when there is none.
  [[nodiscard]] int get() const { return descriptor_; }
  [[nodiscard]] bool valid() const { return descriptor_ >= 0; }

  // Closes what is owned and takes `descriptor` instead. errno is left as it was: a destructor on the way out
  // of a failed call must not overwrite the reason.
  void reset(int descriptor = -1) {
    const int previous = std::exchange(descriptor_, descriptor);
    if (previous < 0) return;
    const int reason = errno;
    ::close(previous);
    errno = reason;
  }

  // Hands the descriptor to the caller, who closes it from now on.
  [[nodiscard]] int release() { return std::exchange(descriptor_, -1); }

 private:
  int descriptor_ = -1;
};

}  // namespace platform

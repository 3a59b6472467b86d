#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace platform {

// Owns one file descriptor and closes it on destruction; -1 means none. Movable, not copyable. Usable on any
// thread, by one thread at a time. Errors of close(2) are ignored; a writer that must detect write errors
// calls fsync(2) first.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  // Takes ownership of `descriptor`, the result of open(2) or a similar call; -1 makes an empty object.
  explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
  ~FileDescriptor() { reset(); }

  FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(other.release()) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    if (this != &other) reset(other.release());
    return *this;
  }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;

  // Returns the descriptor without releasing it; -1 if there is none.
  [[nodiscard]] int get() const { return descriptor_; }
  [[nodiscard]] bool valid() const { return descriptor_ >= 0; }

  // Closes the owned descriptor and takes ownership of `descriptor`. Preserves errno, because a destructor
  // that runs after a failed call must not overwrite the error.
  void reset(int descriptor = -1) {
    const int previous = std::exchange(descriptor_, descriptor);
    if (previous < 0) return;
    const int reason = errno;
    ::close(previous);
    errno = reason;
  }

  // Releases the descriptor to the caller, who must close it.
  [[nodiscard]] int release() { return std::exchange(descriptor_, -1); }

 private:
  int descriptor_ = -1;
};

}  // namespace platform

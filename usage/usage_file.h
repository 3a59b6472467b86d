#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>

#include "platform/file_descriptor.h"

// One day's file, open for appending, for as long as the object lives. While it is open, no other writer of
// this kind, in this process or another, is in the file. Any thread; an object belongs to one.
class UsageFile {
 public:
  UsageFile() = default;

  // Opens the file at `path`, made when missing. Waits for another writer, a second at most; one that holds
  // the file longer is passed by. Nothing on failure, with errno set: ENOENT without the folder, EINVAL for
  // what is no regular file.
  [[nodiscard]] static std::optional<UsageFile> open(const std::string& path);

  [[nodiscard]] bool isEmpty() const { return length_ == 0; }

  // Puts `bytes` at the end in one write. When they don't fit whole, none of them stays: false, and
  // "write log failed" on the error log.
  [[nodiscard]] bool append(std::string_view bytes);

 private:
  UsageFile(platform::FileDescriptor descriptor, off_t length, bool locked)
      : descriptor_(std::move(descriptor)), length_(length), locked_(locked) {}

  platform::FileDescriptor descriptor_;
  off_t length_ = 0;
  bool locked_ = false;
};

#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>

#include "platform/file_descriptor.h"

// One day's file, open for appending, for as long as the object lives. Meanwhile no other writer of this
// kind, in this process or another, is in the file. Any thread; an object belongs to one.
class UsageFile {
 public:
  UsageFile() = default;

  // Opens the file at `path`, made when missing. Waits for another writer, a second at most; somebody who
  // holds the file longer is passed by where something stands in it, and else keeps it. Nothing on failure,
  // with errno set: ENOENT without the folder, EINVAL or ESPIPE for what is no regular file, EWOULDBLOCK for
  // an empty file that is held.
  [[nodiscard]] static std::optional<UsageFile> open(const std::string& path);

  [[nodiscard]] bool isEmpty() const { return length_ == 0; }

  // Puts `bytes` at the end in one write. When they don't fit whole, none of them stays: false, and
  // "write log failed" on the error log.
  [[nodiscard]] bool append(std::string_view bytes);

 private:
  UsageFile(platform::FileDescriptor descriptor, off_t length, bool held)
      : descriptor_(std::move(descriptor)), length_(length), held_(held) {}

  platform::FileDescriptor descriptor_;
  off_t length_ = 0;
  bool held_ = false;  // by this object alone
};

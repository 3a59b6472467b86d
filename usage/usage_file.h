#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>

#include "platform/file_descriptor.h"

// One day's file, open for appending, for as long as the object lives. Meanwhile no other writer of usage
// files, in this process or another, writes, except as described at open. Any thread; an object belongs to
// one.
class UsageFile {
 public:
  UsageFile() = default;

  // Opens the file at `path`, made when missing, and makes it private to the user. Takes the lock of
  // usage/usage_lock.h, for which it waits up to 1 s. Without the lock, records are appended to a non-empty
  // file and an empty one is not opened. Returns nullopt on failure, with errno set: ENOENT without the
  // folder, EINVAL or ESPIPE for what is no regular file, EWOULDBLOCK for an empty file while another writer
  // has the lock.
  [[nodiscard]] static std::optional<UsageFile> open(const std::string& path);

  [[nodiscard]] bool isEmpty() const { return length_ == 0; }

  // Puts `bytes` at the end in one write. When they don't fit whole, none of them stays: false, and
  // "write log failed" on the error log.
  [[nodiscard]] bool append(std::string_view bytes);

 private:
  UsageFile(platform::FileDescriptor descriptor, platform::FileDescriptor lock, off_t length)
      : lock_(std::move(lock)), descriptor_(std::move(descriptor)), length_(length) {}

  platform::FileDescriptor lock_;  // not valid where it was not to be had
  platform::FileDescriptor descriptor_;
  off_t length_ = 0;
};

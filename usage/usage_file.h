#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>

#include "platform/file_descriptor.h"

// One day's usage file, open for appending. While the object exists, no other writer in this or another
// process writes usage files, except as described at open. Usable on any thread, by one thread at a time.
class UsageFile {
 public:
  UsageFile() = default;

  // Opens the file at `path`, creates it if missing, and makes it private to the user. Waits up to 1 s for
  // the lock of usage/usage_lock.h. Without the lock, records are appended to a non-empty file, and an empty
  // file is not opened. Returns nullopt and sets errno on failure: ENOENT if the folder does not exist,
  // EINVAL or ESPIPE if the file is not regular, EWOULDBLOCK if it is empty and another writer holds the
  // lock.
  [[nodiscard]] static std::optional<UsageFile> open(const std::string& path);

  [[nodiscard]] bool isEmpty() const { return length_ == 0; }

  // Appends `bytes` in one write(2). If they are not written completely, writes "write log failed" to the
  // error log and returns false; if the lock is held, also removes the partial record.
  [[nodiscard]] bool append(std::string_view bytes);

 private:
  UsageFile(platform::FileDescriptor descriptor, platform::FileDescriptor lock, off_t length)
      : lock_(std::move(lock)), descriptor_(std::move(descriptor)), length_(length) {}

  platform::FileDescriptor lock_;  // not valid if it could not be acquired
  platform::FileDescriptor descriptor_;
  off_t length_ = 0;
};

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/file_descriptor.h"

// One day's file, open for appending, for as long as the object lives. Writers of this kind, in this process
// or another, never mix within what one of them appends: it is one write to the end of the file. Any thread;
// an object belongs to one.
class UsageFile {
 public:
  UsageFile() = default;

  // Opens the file at `path`, made when missing. Nothing on failure, with errno set: ENOENT without the
  // folder, EINVAL or ESPIPE for what is no regular file.
  [[nodiscard]] static std::optional<UsageFile> open(const std::string& path);

  // Whether nothing stands in the file yet. Other writers then wait in `open`, a second at most, until this
  // one is done, so that what belongs at the beginning is written once.
  [[nodiscard]] bool isEmpty() const { return empty_; }

  // Puts `bytes` at the end. When they don't fit whole, none of them stays: false, and "write log failed" on
  // the error log.
  [[nodiscard]] bool append(std::string_view bytes);

 private:
  UsageFile(platform::FileDescriptor descriptor, bool empty)
      : descriptor_(std::move(descriptor)), empty_(empty) {}

  platform::FileDescriptor descriptor_;
  bool empty_ = true;
};

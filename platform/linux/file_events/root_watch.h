#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "platform/file_descriptor.h"
#include "platform/linux/file_events/file_identity.h"
#include "platform/linux/file_events/inotify.h"

namespace platform {

// Says when a path may have come to lead to another folder than it did at first, or to none. Any thread, but
// one at a time.
class RootWatch {
 public:
  // Nothing when `path`, an absolute one, leads to no folder or its way can't be watched.
  [[nodiscard]] static std::optional<RootWatch> create(const std::string& path);

  // Readable when a folder on the way was touched.
  [[nodiscard]] int folders() const { return way_.descriptor(); }
  // In an exceptional state when file systems were mounted or unmounted; -1 where that can't be seen.
  [[nodiscard]] int mounts() const { return mounts_.get(); }

  // Asks the file system, and takes the notices that led to the question. Where the answer can't be had, the
  // one before holds.
  [[nodiscard]] bool hasChanged();

 private:
  RootWatch(std::string path, const FileIdentity& identity);
  [[nodiscard]] bool watchWay();
  [[nodiscard]] std::optional<bool> leadsToWatchedRoot();
  [[nodiscard]] bool watchFoldersOf(const std::filesystem::path& way);

  std::string path_;
  FileIdentity identity_;
  Inotify way_;
  int root_ = -1;  // its number in way_; -1 where it may not be read, and only its identity is known
  FileDescriptor mounts_;
  bool watchesAny_ = false;
  bool hasChanged_ = false;
};

}  // namespace platform

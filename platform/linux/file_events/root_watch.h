#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "platform/file_descriptor.h"
#include "platform/linux/file_events/file_identity.h"
#include "platform/linux/file_events/inotify.h"

namespace platform {

// Detects that a path leads to another folder than at first, or to none. Usable on any thread, one at a time.
class RootWatch {
 public:
  // `path` must be absolute. Returns nullopt if it leads to no folder, or if neither the folder nor an
  // ancestor can be watched.
  [[nodiscard]] static std::optional<RootWatch> create(const std::string& path);

  // Returns the inotify descriptor, still owned here, which is readable after an event on the folder or an
  // ancestor.
  [[nodiscard]] int folders() const { return inotify_.descriptor(); }
  // Returns the descriptor of /proc/self/mountinfo, still owned here, which polls with POLLPRI after a change
  // of the mounts; -1 if it cannot be opened.
  [[nodiscard]] int mounts() const { return mounts_.get(); }

  // Discards the pending events and checks where the path leads now. If the check fails, returns the previous
  // result.
  [[nodiscard]] bool hasChanged();

 private:
  RootWatch(std::string path, const FileIdentity& identity);
  [[nodiscard]] bool watchPath();
  [[nodiscard]] std::optional<bool> leadsToWatchedRoot();
  [[nodiscard]] bool watchAncestorsOf(const std::filesystem::path& path);

  std::string path_;
  FileIdentity identity_;
  Inotify inotify_;
  int root_ = -1;  // watch descriptor in inotify_; -1 if the root is unreadable, then identity_ decides
  FileDescriptor mounts_;
  bool watchesAny_ = false;
  bool hasChanged_ = false;
};

}  // namespace platform

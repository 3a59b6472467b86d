#pragma once

#include <functional>
#include <string>

#include "platform/linux/file_events/inotify.h"
#include "platform/linux/file_events/watched_folders.h"

namespace platform {

// Reports the folders of a tree in which entries are created, deleted, moved, written to or change
// attributes. Does not follow links, except for the root. Usable on any thread, one at a time.
class FolderTreeWatch {
 public:
  // Watches the tree breadth-first, as far as the inotify limits allow.
  explicit FolderTreeWatch(std::string root);

  // Returns the inotify descriptor, still owned here, which is readable while events are pending; -1 if
  // inotify is unavailable.
  [[nodiscard]] int descriptor() const { return inotify_.descriptor(); }

  // Calls `changed` with the path of each changed folder, possibly more than once, and adds watches for new
  // folders. Returns true if the inotify queue overflowed (IN_Q_OVERFLOW): events are lost, and the caller
  // must create a new FolderTreeWatch to know all folders again.
  [[nodiscard]] bool takeChanges(const std::function<void(const std::string& folder)>& changed);

 private:
  using Report = std::function<void(const std::string& folder)>;

  void take(const Inotify::Notice& notice, const Report& changed);
  void watchTree(const std::string& top, const Report& filled);
  void forgetTree(const std::string& top);

  std::string root_;
  Inotify inotify_;
  WatchedFolders folders_;  // keyed by path relative to the root, which is ""
};

}  // namespace platform

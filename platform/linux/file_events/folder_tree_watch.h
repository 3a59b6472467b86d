#pragma once

#include <functional>
#include <string>

#include "platform/linux/file_events/inotify.h"
#include "platform/linux/file_events/watched_folders.h"

namespace platform {

// Reports in which folders of a tree entries come, go, are written to or get new attributes. Links are not
// followed, but for the root itself. Any thread, but one at a time.
class FolderTreeWatch {
 public:
  // Watches as much of the tree as there is room for, the upper folders first.
  explicit FolderTreeWatch(std::string root);

  // Readable when something has changed; -1 when nothing at all can be watched.
  [[nodiscard]] int descriptor() const { return inotify_.descriptor(); }

  // Calls `changed` with the path of each folder in which something has changed, some more than once, and
  // takes new folders into the watch. True when the queue ran over: changes went untold, and only a new watch
  // on the tree knows all its folders.
  [[nodiscard]] bool takeChanges(const std::function<void(const std::string& folder)>& changed);

 private:
  using Report = std::function<void(const std::string& folder)>;

  void take(const Inotify::Notice& notice, const Report& changed);
  void watchTree(const std::string& top, const Report& filled);
  void forgetTree(const std::string& top);

  std::string root_;
  Inotify inotify_;
  WatchedFolders folders_;  // by their paths below the root, which is the empty one
};

}  // namespace platform

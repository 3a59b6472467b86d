#include "platform/linux/file_events/folder_tree_watch.h"

#include <sys/inotify.h>

#include <deque>
#include <filesystem>
#include <system_error>
#include <utility>

namespace platform {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t changes = IN_ATTRIB | IN_CREATE | IN_DELETE | IN_MODIFY | IN_MOVED_FROM | IN_MOVED_TO;

std::string below(const std::string& folder, std::string_view name) {
  return folder.empty() ? std::string(name) : folder + '/' + std::string(name);
}

// Ignores events without a name, which concern the watched folder itself: the watch on its parent reports the
// same with a name.
bool isChange(const Inotify::Notice& notice) {
  return !notice.name.empty() && (notice.mask & changes) != 0;
}

struct Contents {
  std::vector<std::string> folders = {};
  bool empty = true;
};

// A folder that cannot be read counts as empty.
Contents contentsOf(const std::string& path) {
  Contents contents;
  std::error_code error;
  for (fs::directory_iterator entry(path, error), end; !error && entry != end; entry.increment(error)) {
    contents.empty = false;
    if (!entry->is_symlink(error) && entry->is_directory(error))
      contents.folders.push_back(entry->path().filename());
  }
  return contents;
}

}  // namespace

FolderTreeWatch::FolderTreeWatch(std::string root) : root_(std::move(root)) {
  watchTree("", [](const std::string&) {});
}

bool FolderTreeWatch::takeChanges(const Report& changed) {
  bool lostSome = false;
  inotify_.drain([&](const Inotify::Notice& notice) {
    if ((notice.mask & IN_Q_OVERFLOW) != 0) lostSome = true;
    take(notice, changed);
  });
  return lostSome;
}

void FolderTreeWatch::take(const Inotify::Notice& notice, const Report& changed) {
  const std::string* known = folders_.find(notice.watch);
  if (known == nullptr) return;
  if ((notice.mask & IN_IGNORED) != 0) return folders_.erase(notice.watch);
  if (!isChange(notice)) return;
  const std::string folder = *known;
  changed(folder.empty() ? root_ : root_ + '/' + folder);
  if ((notice.mask & IN_ISDIR) == 0) return;

  const std::string entry = below(folder, notice.name);
  if ((notice.mask & IN_MOVED_FROM) != 0) forgetTree(entry);
  // The new folder may already have entries: it was moved with them, or they were created before the watch
  // was added.
  if ((notice.mask & (IN_CREATE | IN_MOVED_TO)) != 0) watchTree(entry, changed);
}

// Adds the watch on each folder before it reads the folder, so that it misses no new subfolder. Calls
// `filled` for each folder that is not empty.
void FolderTreeWatch::watchTree(const std::string& top, const Report& filled) {
  std::deque<std::string> waiting{top};
  for (; !waiting.empty(); waiting.pop_front()) {
    const std::string& folder = waiting.front();
    // For the root, the path ends in a slash, which overrides IN_DONT_FOLLOW if the root is a link.
    const std::string path = root_ + '/' + folder;
    const int watch = inotify_.add(path, changes | IN_ONLYDIR | IN_DONT_FOLLOW | IN_EXCL_UNLINK);
    if (watch < 0) continue;
    folders_.put(watch, folder);
    const Contents contents = contentsOf(path);
    if (!contents.empty) filled(path);
    for (const std::string& name : contents.folders) waiting.push_back(below(folder, name));
  }
}

void FolderTreeWatch::forgetTree(const std::string& top) {
  for (const int watch : folders_.takeTree(top)) inotify_.remove(watch);
}

}  // namespace platform

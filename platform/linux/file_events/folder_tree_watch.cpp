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

// A notice without a name is about the watched folder itself. The watch on the folder above reports the same
// with its name.
bool isChange(const Inotify::Notice& notice) {
  return !notice.name.empty() && (notice.mask & changes) != 0;
}

struct Contents {
  std::vector<std::string> folders = {};
  bool empty = true;
};

// A folder that can't be read counts as empty.
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
  // What is in it already came with it, or before the watch on it.
  if ((notice.mask & (IN_CREATE | IN_MOVED_TO)) != 0) watchTree(entry, changed);
}

// Each folder is read after it has come under watch, so that none made meanwhile is missed. `filled` hears of
// those that are not empty.
void FolderTreeWatch::watchTree(const std::string& top, const Report& filled) {
  std::deque<std::string> waiting{top};
  for (; !waiting.empty(); waiting.pop_front()) {
    const std::string& folder = waiting.front();
    // With nothing behind it, the slash has the root's link followed.
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

#include "platform/linux/file_events/watched_folders.h"

namespace platform {

void WatchedFolders::put(int watch, const std::string& path) {
  erase(watch);
  const auto [entry, isNew] = paths_.try_emplace(path, watch);
  if (!isNew) {
    watches_.erase(entry->second);
    entry->second = watch;
  }
  watches_.emplace(watch, entry);
}

void WatchedFolders::erase(int watch) {
  const auto entry = watches_.find(watch);
  if (entry == watches_.end()) return;
  paths_.erase(entry->second);
  watches_.erase(entry);
}

const std::string* WatchedFolders::find(int watch) const {
  const auto entry = watches_.find(watch);
  return entry == watches_.end() ? nullptr : &entry->second->first;
}

std::vector<int> WatchedFolders::takeTree(const std::string& path) {
  std::vector<int> taken;
  if (const auto top = paths_.find(path); top != paths_.end()) taken.push_back(top->second);
  const std::string prefix = path + '/';
  for (auto entry = paths_.lower_bound(prefix); entry != paths_.end() && entry->first.starts_with(prefix);
       ++entry) {
    taken.push_back(entry->second);
  }
  for (const int watch : taken) erase(watch);
  return taken;
}

}  // namespace platform

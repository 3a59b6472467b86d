#pragma once

#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace platform {

// Bidirectional map between watch descriptors and folder paths, for trees of tens of thousands of folders.
// Usable on any thread, one at a time.
class WatchedFolders {
 public:
  // Inserts the pair and replaces earlier entries of this watch or this path.
  void put(int watch, const std::string& path);
  void erase(int watch);

  // Returns the path, or nullptr if `watch` is not in the map. The pointer is valid until the map changes.
  [[nodiscard]] const std::string* find(int watch) const;

  // Removes `path` and all folders below it, and returns their watches.
  [[nodiscard]] std::vector<int> takeTree(const std::string& path);

 private:
  using ByPath = std::map<std::string, int>;

  ByPath paths_;
  std::unordered_map<int, ByPath::iterator> watches_;
};

}  // namespace platform

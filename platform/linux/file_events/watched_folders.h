#pragma once

#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace platform {

// Which folder each number of a watch stands for: two ways into one list, for trees of tens of thousands. A
// plain value.
class WatchedFolders {
 public:
  // The pair takes the place of earlier ones of that number or that path.
  void put(int watch, const std::string& path);
  void erase(int watch);

  // Null for a number that is not in the list; good until the list is changed.
  [[nodiscard]] const std::string* find(int watch) const;

  // Takes the folder at `path` and all that are below it out of the list, and returns their numbers.
  [[nodiscard]] std::vector<int> takeTree(const std::string& path);

 private:
  using ByPath = std::map<std::string, int>;

  ByPath paths_;
  std::unordered_map<int, ByPath::iterator> watches_;
};

}  // namespace platform

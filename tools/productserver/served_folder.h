#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace tools {

// A folder whose files may be read by the paths of requests. Nothing outside the folder can be reached,
// neither by ".." nor by a symbolic link. Any thread.
class ServedFolder {
 public:
  // Nothing when there is no folder at `path`.
  [[nodiscard]] static std::optional<ServedFolder> at(const std::string& path);

  // The contents of the file that the decoded path of a request leads to; nothing when there is none to be
  // read.
  [[nodiscard]] std::optional<std::string> read(const std::string& requestPath) const;

  [[nodiscard]] std::string path() const { return root_.string(); }

 private:
  explicit ServedFolder(std::filesystem::path root) : root_(std::move(root)) {}

  [[nodiscard]] bool holds(const std::filesystem::path& resolved) const;

  std::filesystem::path root_;
};

}  // namespace tools

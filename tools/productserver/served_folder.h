#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace tools {

// A folder whose files can be read by request path. Neither ".." nor symbolic links lead outside the folder.
// Thread-safe.
class ServedFolder {
 public:
  // Returns nullopt if there is no folder at `path`.
  [[nodiscard]] static std::optional<ServedFolder> at(const std::string& path);

  // Returns the contents of the file at the decoded request path; nullopt if it cannot be read.
  [[nodiscard]] std::optional<std::string> read(const std::string& requestPath) const;

  [[nodiscard]] std::string path() const { return root_.string(); }

 private:
  explicit ServedFolder(std::filesystem::path root) : root_(std::move(root)) {}

  [[nodiscard]] bool holds(const std::filesystem::path& resolved) const;

  std::filesystem::path root_;
};

}  // namespace tools

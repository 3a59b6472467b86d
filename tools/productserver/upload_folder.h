#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tools {

// A folder that takes uploaded files, numbered in the order in which they came: 0001_NAME, 0002_NAME ... A
// file appears there whole. Any thread.
class UploadFolder {
 public:
  // Makes the folder when it is not there. The numbers go on behind the highest in it, so that nothing is
  // overwritten. Null when there can be no such folder.
  [[nodiscard]] static std::unique_ptr<UploadFolder> open(const std::string& path);

  // Keeps the data under a number of its own and returns the name of the file; of the sender's name only
  // what is harmless in a file name is taken. Nothing with errno set on failure.
  [[nodiscard]] std::optional<std::string> keep(std::string_view sendersName, std::string_view data);

 private:
  UploadFolder(std::string path, unsigned number) : path_(std::move(path)), number_(number) {}

  std::string path_;
  std::atomic<unsigned> number_;  // the last one given
};

// The last component of the sender's file name, of letters, digits, ".", "-" and "_" alone, at most 100
// bytes.
[[nodiscard]] std::string harmlessName(std::string_view sendersName);

}  // namespace tools

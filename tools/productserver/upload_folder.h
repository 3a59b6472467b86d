#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tools {

// A folder for uploaded files, numbered in order of arrival: 0001_NAME, 0002_NAME ... Files appear
// atomically. Thread-safe.
class UploadFolder {
 public:
  // Creates the folder if missing. Numbering continues after the highest number in it, so that no file is
  // overwritten. Returns nullptr if the folder cannot be created.
  [[nodiscard]] static std::unique_ptr<UploadFolder> open(const std::string& path);

  // Stores the data under the next number and returns the file's name, made of the number and the sanitised
  // name from the sender. Returns nullopt and sets errno on failure.
  [[nodiscard]] std::optional<std::string> keep(std::string_view clientFileName, std::string_view data);

 private:
  UploadFolder(std::string path, unsigned number) : path_(std::move(path)), number_(number) {}

  std::string path_;
  std::atomic<unsigned> number_;  // the last one used
};

// Returns the last component of the sender's file name, with all characters except letters, digits, ".", "-"
// and "_" replaced by "_", cut to 100 bytes.
[[nodiscard]] std::string safeFileName(std::string_view clientFileName);

}  // namespace tools

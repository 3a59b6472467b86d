#include "tests/end_to_end/usage_files.h"

#include <algorithm>

#include "tests/harness/processes/file_contents.h"

namespace fs = std::filesystem;

namespace {

// The header ends with the first version number after the bundle's.
std::string withoutHeader(const std::string& file) {
  const std::string end =
      "\x07"
      "1.0.0.0";
  const std::size_t place = file.find(end);
  return place == std::string::npos ? file : file.substr(place + end.size());
}

}  // namespace

std::vector<fs::path> usageFiles() {
  std::vector<fs::path> files;
  std::error_code none;
  for (const auto& entry : fs::directory_iterator("/tmp/home/.local/share/Tovalin", none)) {
    if (entry.path().extension() == ".dat") files.push_back(entry.path());
  }
  std::ranges::sort(files);
  return files;
}

std::string recordedUsage() {
  std::string all;
  for (const fs::path& file : usageFiles()) {
    const std::string contents = test_support::contentsOf(file);
    all += all.empty() ? contents : withoutHeader(contents);
  }
  return all;
}

int recordsLike(const std::string& bytes) {
  const std::string all = recordedUsage();
  int found = 0;
  for (std::size_t at = all.find(bytes); at != std::string::npos; at = all.find(bytes, at + 1)) ++found;
  return found;
}

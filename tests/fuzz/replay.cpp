#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "tests/fuzz/target.h"

namespace {

namespace fs = std::filesystem;

// Sorted, so that the order is the same on every machine.
std::vector<fs::path> filesIn(const fs::path& folder) {
  std::error_code error;
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(folder, error)) files.push_back(entry.path());
  std::ranges::sort(files);
  return files;
}

// The last name printed is that of the failing input.
void replay(const fs::path& path) {
  std::printf("%s\n", path.filename().c_str());
  std::fflush(stdout);
  std::ifstream stream(path, std::ios::binary);
  const std::vector<char> bytes(std::istreambuf_iterator<char>(stream), {});
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

}  // namespace

// replay FOLDER: passes every file of a corpus to the target once. Fails if there is none.
int main(int argc, char** argv) {
  const std::vector<fs::path> files = argc == 2 ? filesIn(argv[1]) : std::vector<fs::path>();
  if (files.empty()) {
    std::fputs("no inputs to replay\n", stderr);
    return 1;
  }
  for (const fs::path& path : files) replay(path);
  return 0;
}

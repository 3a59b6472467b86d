// Measures the writing of usage records against open(), write() and close() with the same bytes on the same
// disk.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "tests/bench/pairs.h"
#include "usage/usage_record.h"

namespace {

// On the disk of this program; the sandbox's own file systems are in memory.
const std::filesystem::path support =
    std::filesystem::canonical("/proc/self/exe").parent_path() / "records_bench.files";
const std::filesystem::path folder = support / "Tovalin";
const std::filesystem::path bareFile = folder / "bare";

using Message = std::array<char, record_format::message::size>;

Message deviceEvent() {
  Message message{'-', 'n', 'c', 'd', 'a', 't'};
  message[record_format::message::dataCommandOffset] = 3;
  std::fill_n(message.begin() + record_format::message::deviceNameOffset, 20, 'n');
  return message;
}

Message fullTransfers() {
  Message message{'-', 'n', 'c', 'd', 'a', 't'};
  message[record_format::message::entryCountOffset] = record_format::message::maxEntries;
  for (std::size_t i = 0; i < record_format::message::maxEntries; ++i) {
    const std::size_t entry = record_format::message::entriesOffset + i * record_format::message::entrySize;
    message[entry] = 1;
    std::fill_n(message.begin() + entry + record_format::message::entryNameOffset, 9, 'n');
  }
  return message;
}

std::string todaysFile() {
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    if (entry.path().extension() == ".dat") return entry.path();
  std::abort();
}

// Returns the bytes that a message adds to the day's file.
std::string recordOf(const Message& message) {
  TvlGetCollectData(message);
  const auto before = std::filesystem::file_size(todaysFile());
  TvlGetCollectData(message);
  std::ifstream file(todaysFile(), std::ios::binary);
  file.seekg(static_cast<std::streamoff>(before));
  return {std::istreambuf_iterator<char>(file), {}};
}

void writeBare(std::string_view bytes) {
  const int file = ::open(bareFile.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
  if (::write(file, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) std::abort();
  ::close(file);
}

void compare(const std::string& what, const Message& message) {
  const std::string record = recordOf(message);
  bench::print(bench::timePairs(
      what, [&] { TvlGetCollectData(message); }, [&] { writeBare(record); }));
  // Both files start empty for the next comparison.
  std::filesystem::remove(bareFile);
  std::filesystem::remove(todaysFile());
}

}  // namespace

int main() {
  ::setenv("XDG_DATA_HOME", support.c_str(), 1);
  compare("usage record, device event", deviceEvent());
  compare("usage record, 30 transfers", fullTransfers());
  std::filesystem::remove_all(support);
}

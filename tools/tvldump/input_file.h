#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace tools {

// What is read of one file at most, far beyond a day's records: a device without an end must not take all
// memory.
inline constexpr std::size_t kMostInput = std::size_t{1} << 30;

// Reads whole files into one piece of memory, which is used again for the next. One thread at a time.
class InputFile {
 public:
  // All bytes of the file at `path`; "-" is the standard input. Waits for whoever writes into a pipe. They
  // last until the next call. Returns nullopt when it can't be read or is too large, with the reason.
  [[nodiscard]] std::optional<std::span<const char>> read(const std::string& path, std::string& reason);

 private:
  [[nodiscard]] std::optional<std::span<const char>> readAll(int descriptor, std::string& reason);

  void grow(std::size_t size, std::size_t filled);

  // Not a vector, which would write zeros where the file's bytes come next.
  std::unique_ptr<char[]> bytes_;
  std::size_t size_ = 0;
};

}  // namespace tools

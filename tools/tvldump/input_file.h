#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace tools {

// The maximum number of bytes to read from a file, far more than a day's records. Prevents running out of
// memory on an endless device.
inline constexpr std::size_t kMaxInput = std::size_t{1} << 30;

// Reads whole files into a reusable buffer. For use by one thread at a time.
class InputFile {
 public:
  // Reads the file at `path`; "-" is standard input. Waits for the writers of a pipe. The bytes are valid
  // until the next call. Returns nullopt and sets `reason` if the file cannot be read or is too large.
  [[nodiscard]] std::optional<std::span<const char>> read(const std::string& path, std::string& reason);

 private:
  [[nodiscard]] std::optional<std::span<const char>> readAll(int descriptor, std::string& reason);

  void grow(std::size_t size, std::size_t filled);

  // Not a std::vector, which would zero the memory before it is overwritten.
  std::unique_ptr<char[]> bytes_;
  std::size_t size_ = 0;
};

}  // namespace tools

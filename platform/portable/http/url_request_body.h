#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace platform {

// Reads the pieces of a request body as one sequence of bytes. Does not own the pieces.
class UrlRequestBody {
 public:
  explicit UrlRequestBody(const std::vector<std::span<const char>>& pieces);

  [[nodiscard]] std::size_t size() const { return size_; }
  // Copies the next bytes into `buffer`. Returns their number, 0 at the end.
  [[nodiscard]] std::size_t read(std::span<char> buffer);
  // Continues at `position`, counted from the start. Returns false and does not move if `position` is beyond
  // the end.
  [[nodiscard]] bool seek(std::size_t position);

 private:
  const std::vector<std::span<const char>>& pieces_;
  std::size_t size_ = 0;
  std::size_t piece_ = 0;
  std::size_t offset_ = 0;  // within the piece
};

}  // namespace platform

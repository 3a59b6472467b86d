#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace platform {

// The body of a request, read piece after piece as if the pieces were one. It owns none of them.
class UrlRequestBody {
 public:
  explicit UrlRequestBody(const std::vector<std::span<const char>>& pieces);

  [[nodiscard]] std::size_t size() const { return size_; }
  // Copies what follows into `buffer` and goes on behind it. Returns the number of bytes, 0 at the end.
  [[nodiscard]] std::size_t read(std::span<char> buffer);
  // Goes on at `position`, counted from the start; false, and no move, when that is behind the end.
  [[nodiscard]] bool seek(std::size_t position);

 private:
  const std::vector<std::span<const char>>& pieces_;
  std::size_t size_ = 0;
  std::size_t piece_ = 0;
  std::size_t offset_ = 0;  // within the piece
};

}  // namespace platform

#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace platform {

// A text that is built piece by piece. Its length and its capacity never exceed `limit` bytes.
class BoundedText {
 public:
  explicit BoundedText(std::size_t limit) : limit_(limit) {}

  // Returns false and appends nothing if the text would exceed the limit. Throws std::bad_alloc.
  [[nodiscard]] bool append(std::string_view piece) {
    if (piece.size() > limit_ - text_.size()) return false;
    const std::size_t needed = text_.size() + piece.size();
    if (needed > text_.capacity()) text_.reserve(std::max(needed, std::min(2 * text_.capacity(), limit_)));
    text_ += piece;
    return true;
  }
  [[nodiscard]] std::string take() { return std::move(text_); }

 private:
  std::size_t limit_;
  std::string text_;
};

}  // namespace platform

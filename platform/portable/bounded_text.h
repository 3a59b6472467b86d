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
    if (needed > text_.capacity()) grow(std::max(needed, std::min(2 * text_.capacity(), limit_)));
    text_ += piece;
    return true;
  }
  [[nodiscard]] std::string take() { return std::move(text_); }

 private:
  // A new string, because reserve() of a longer one may double its capacity beyond the limit.
  void grow(std::size_t capacity) {
    std::string larger;
    larger.reserve(capacity);
    larger += text_;
    text_.swap(larger);
  }

  std::size_t limit_;
  std::string text_;
};

}  // namespace platform

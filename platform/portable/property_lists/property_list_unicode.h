#pragma once

#include <string>

namespace platform {

// Appends a code point in UTF-8. Returns false if it is a surrogate or exceeds U+10FFFF.
[[nodiscard]] bool appendUtf8(std::string& text, char32_t codePoint);

// Converts UTF-16 code units, one by one, to UTF-8 at the end of a text that must outlive this object.
class Utf16Appender {
 public:
  explicit Utf16Appender(std::string& text) : text_(text) {}

  // Returns false for a surrogate without its other half.
  [[nodiscard]] bool add(char16_t unit);
  // Returns whether no surrogate pair is incomplete.
  [[nodiscard]] bool complete() const { return high_ == 0; }

 private:
  std::string& text_;
  char16_t high_ = 0;
};

}  // namespace platform

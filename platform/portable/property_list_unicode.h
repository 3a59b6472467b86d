#pragma once

#include <string>

namespace platform {

// Appends a code point in UTF-8; false when it is none (a surrogate, or beyond U+10FFFF).
[[nodiscard]] bool appendUtf8(std::string& text, char32_t codePoint);

// Turns UTF-16 units, one by one, into UTF-8 at the end of a text that must outlive it.
class Utf16Appender {
 public:
  explicit Utf16Appender(std::string& text) : text_(text) {}

  // False on half of a surrogate pair without the other.
  [[nodiscard]] bool add(char16_t unit);
  // Whether the units so far stand by themselves: no pair is half done.
  [[nodiscard]] bool complete() const { return high_ == 0; }

 private:
  std::string& text_;
  char16_t high_ = 0;
};

}  // namespace platform

#include "usage/console_text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <utf8.h>

namespace {

constexpr std::size_t maxCharacters = 1000;
constexpr std::string_view ellipsis = "\u2026";

struct Range {
  char32_t first;
  char32_t last;
};

// Unicode's control characters, line and paragraph separators, and bidirectional formatting characters.
constexpr std::array escaped{Range{0x00, 0x1f},     Range{0x7f, 0x9f},     Range{0x61c, 0x61c},
                             Range{0x200e, 0x200f}, Range{0x2028, 0x202e}, Range{0x2066, 0x2069}};

// One input character and its printed form.
struct Character {
  std::size_t bytes;
  std::string printed;
  std::size_t width;  // of the printed form, in characters
};

// Returns the length in bytes of the first character of `text`; 0 if it is not valid UTF-8.
std::size_t lengthOfFirst(std::string_view text) {
  for (std::size_t length = 1; length <= std::min<std::size_t>(text.size(), 4); ++length) {
    if (utf8::is_valid(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(length))) return length;
  }
  return 0;
}

std::string escape(const char* format, unsigned value) {
  std::array<char, 16> buffer{};
  std::snprintf(buffer.data(), buffer.size(), format, value);
  return buffer.data();
}

Character firstOf(std::string_view text) {
  const std::size_t length = lengthOfFirst(text);
  if (length == 0) {
    auto byte = escape("\\x%02x", static_cast<unsigned char>(text.front()));
    return {1, byte, byte.size()};
  }
  const char32_t code = utf8::unchecked::peek_next(text.begin());
  if (std::ranges::none_of(escaped, [=](Range range) { return range.first <= code && code <= range.last; }))
    return {length, std::string(text.substr(0, length)), 1};
  auto control = escape("\\u%04x", code);
  return {length, control, control.size()};
}

}  // namespace

std::string consoleText(std::string_view text) {
  std::string line;
  std::size_t width = 0;
  std::size_t cut = 0;  // length of the longest prefix that leaves space for the ellipsis
  while (!text.empty()) {
    const Character next = firstOf(text);
    if (width + next.width > maxCharacters) return line.substr(0, cut).append(ellipsis);
    line += next.printed;
    width += next.width;
    if (width < maxCharacters) cut = line.size();
    text.remove_prefix(next.bytes);
  }
  return line;
}

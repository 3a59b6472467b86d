#include "tools/tvldump/json_text.h"

#include <cstddef>
#include <cstdint>

namespace tools {
namespace {

constexpr std::string_view kDigits = "0123456789abcdef";
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

std::uint8_t byteAt(std::string_view bytes, std::size_t index) {
  return static_cast<std::uint8_t>(bytes[index]);
}

bool within(std::uint8_t byte, unsigned lowest, unsigned highest) {
  return byte >= lowest && byte <= highest;
}

// How many bytes a character that begins like this has; 0 when none does.
std::size_t lengthFor(std::uint8_t first) {
  if (first <= 0x7F) return 1;
  if (within(first, 0xC2, 0xDF)) return 2;
  if (within(first, 0xE0, 0xEF)) return 3;
  return within(first, 0xF0, 0xF4) ? 4 : 0;
}

// Shuts out over-long forms, surrogates, and what lies beyond U+10FFFF.
bool mayFollow(std::uint8_t first, std::uint8_t second) {
  return within(second,
                first == 0xE0   ? 0xA0
                : first == 0xF0 ? 0x90
                                : 0x80,
                first == 0xED   ? 0x9F
                : first == 0xF4 ? 0x8F
                                : 0xBF);
}

// The length of the character at the beginning; 0 when there is none.
std::size_t characterLength(std::string_view bytes) {
  const std::size_t length = bytes.empty() ? 0 : lengthFor(byteAt(bytes, 0));
  if (length > bytes.size()) return 0;
  if (length > 1 && !mayFollow(byteAt(bytes, 0), byteAt(bytes, 1))) return 0;
  for (std::size_t i = 2; i < length; ++i) {
    if (!within(byteAt(bytes, i), 0x80, 0xBF)) return 0;
  }
  return length;
}

std::string escaped(std::string_view character) {
  const std::uint8_t first = byteAt(character, 0);
  if (first == '"' || first == '\\') return "\\" + std::string(character);
  if (first < ' ') return "\\u00" + hexText(character);
  return std::string(character);
}

}  // namespace

bool isUtf8(std::string_view bytes) {
  while (const std::size_t length = characterLength(bytes)) bytes.remove_prefix(length);
  return bytes.empty();
}

std::string jsonString(std::string_view bytes) {
  std::string text = "\"";
  while (!bytes.empty()) {
    const std::size_t length = characterLength(bytes);
    text += length == 0 ? std::string(kReplacement) : escaped(bytes.substr(0, length));
    bytes.remove_prefix(length == 0 ? 1 : length);
  }
  return text + '"';
}

std::string hexText(std::string_view bytes) {
  std::string text;
  for (const char character : bytes) {
    const auto byte = static_cast<std::uint8_t>(character);
    text += {kDigits[byte >> 4u], kDigits[byte & 15u]};
  }
  return text;
}

}  // namespace tools

#include "tools/common/json_text.h"

#include <cstddef>
#include <cstdint>
#include <utf8.h>

namespace tools {
namespace {

constexpr std::string_view kJsonDigits = "0123456789abcdef";
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

void appendEscaped(std::string& text, char character) {
  const bool isControl = character >= '\0' && character < ' ';
  if (isControl) {
    text.append("\\u00").append(hexText({&character, 1}));
    return;
  }
  if (character == '"' || character == '\\') text += '\\';
  text += character;
}

}  // namespace

bool isUtf8(std::string_view bytes) {
  return utf8::is_valid(bytes.begin(), bytes.end());
}

std::string jsonString(std::string_view bytes) {
  std::string text = "\"";
  text.reserve(bytes.size() + 2);
  while (!bytes.empty()) {
    const auto* invalid = utf8::find_invalid(bytes.begin(), bytes.end());
    for (const char character : std::string_view(bytes.begin(), invalid)) appendEscaped(text, character);
    bytes.remove_prefix(static_cast<std::size_t>(invalid - bytes.begin()));
    if (bytes.empty()) break;
    text += kReplacement;
    bytes.remove_prefix(1);
  }
  return text + '"';
}

std::string hexText(std::string_view bytes) {
  std::string text;
  for (const char character : bytes) {
    const auto byte = static_cast<std::uint8_t>(character);
    text += {kJsonDigits[byte >> 4u], kJsonDigits[byte & 15u]};
  }
  return text;
}

}  // namespace tools

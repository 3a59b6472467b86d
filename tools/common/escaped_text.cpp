#include "tools/common/escaped_text.h"

namespace tools {
namespace {

constexpr std::string_view kHexDigits = "0123456789abcdef";

std::string escapedByte(char byte) {
  if (byte == '"' || byte == '\\') return {'\\', byte};
  if (byte >= ' ' && byte <= '~') return {byte};
  const auto value = static_cast<unsigned char>(byte);
  return {'\\', 'x', kHexDigits[value >> 4u], kHexDigits[value & 15u]};
}

}  // namespace

std::string escapedText(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) text += escapedByte(byte);
  return text;
}

std::string quotedText(std::string_view bytes) {
  return '"' + escapedText(bytes) + '"';
}

}  // namespace tools

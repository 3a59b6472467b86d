#include "platform/portable/property_lists/property_list_unicode.h"

namespace platform {
namespace {

bool isHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}
bool isLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

char continuation(char32_t codePoint, int shift) {
  return static_cast<char>(0x80 | ((codePoint >> shift) & 0x3F));
}

}  // namespace

bool appendUtf8(std::string& text, char32_t codePoint) {
  if (isHighSurrogate(codePoint) || isLowSurrogate(codePoint) || codePoint > 0x10FFFF) return false;
  if (codePoint < 0x80) {
    text += static_cast<char>(codePoint);
    return true;
  }
  if (codePoint < 0x800) {
    text += static_cast<char>(0xC0 | (codePoint >> 6));
  } else {
    if (codePoint < 0x10000) {
      text += static_cast<char>(0xE0 | (codePoint >> 12));
    } else {
      text += static_cast<char>(0xF0 | (codePoint >> 18));
      text += continuation(codePoint, 12);
    }
    text += continuation(codePoint, 6);
  }
  text += continuation(codePoint, 0);
  return true;
}

bool Utf16Appender::add(char16_t unit) {
  if (high_ != 0) {
    if (!isLowSurrogate(unit)) return false;
    const char32_t high = high_;
    high_ = 0;
    return appendUtf8(text_, 0x10000 + ((high - 0xD800) << 10) + (unit - 0xDC00u));
  }
  if (isHighSurrogate(unit)) {
    high_ = unit;
    return true;
  }
  return appendUtf8(text_, unit);
}

}  // namespace platform

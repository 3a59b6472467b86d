#include "platform/portable/property_lists/property_list_escapes.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "platform/portable/property_lists/property_list_unicode.h"

namespace platform {
namespace {

// The upper half of the NEXTSTEP encoding; the last two bytes are undefined in it.
constexpr std::array<char16_t, 126> nextstepUpperHalf = {
    0x00A0, 0x00C0, 0x00C1, 0x00C2, 0x00C3, 0x00C4, 0x00C5, 0x00C7, 0x00C8, 0x00C9, 0x00CA, 0x00CB, 0x00CC,
    0x00CD, 0x00CE, 0x00CF, 0x00D0, 0x00D1, 0x00D2, 0x00D3, 0x00D4, 0x00D5, 0x00D6, 0x00D9, 0x00DA, 0x00DB,
    0x00DC, 0x00DD, 0x00DE, 0x00B5, 0x00D7, 0x00F7, 0x00A9, 0x00A1, 0x00A2, 0x00A3, 0x2044, 0x00A5, 0x0192,
    0x00A7, 0x00A4, 0x2019, 0x201C, 0x00AB, 0x2039, 0x203A, 0xFB01, 0xFB02, 0x00AE, 0x2013, 0x2020, 0x2021,
    0x00B7, 0x00A6, 0x00B6, 0x2022, 0x201A, 0x201E, 0x201D, 0x00BB, 0x2026, 0x2030, 0x00AC, 0x00BF, 0x00B9,
    0x02CB, 0x00B4, 0x02C6, 0x02DC, 0x00AF, 0x02D8, 0x02D9, 0x00A8, 0x00B2, 0x02DA, 0x00B8, 0x00B3, 0x02DD,
    0x02DB, 0x02C7, 0x2014, 0x00B1, 0x00BC, 0x00BD, 0x00BE, 0x00E0, 0x00E1, 0x00E2, 0x00E3, 0x00E4, 0x00E5,
    0x00E7, 0x00E8, 0x00E9, 0x00EA, 0x00EB, 0x00EC, 0x00C6, 0x00ED, 0x00AA, 0x00EE, 0x00EF, 0x00F0, 0x00F1,
    0x0141, 0x00D8, 0x0152, 0x00BA, 0x00F2, 0x00F3, 0x00F4, 0x00F5, 0x00F6, 0x00E6, 0x00F9, 0x00FA, 0x00FB,
    0x0131, 0x00FC, 0x00FD, 0x0142, 0x00F8, 0x0153, 0x00DF, 0x00FE, 0x00FF};

// Parses up to `maxDigits` digits of `base` at the start of `text` and removes them. Returns nullopt if there
// are none.
std::optional<unsigned> takeNumber(std::string_view& text, std::size_t maxDigits, int base) {
  unsigned number = 0;
  const char* const end = text.data() + std::min(maxDigits, text.size());
  const auto result = std::from_chars(text.data(), end, number, base);
  if (result.ec != std::errc()) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(result.ptr - text.data()));
  return number;
}

std::optional<char16_t> nextstepCharacter(unsigned byte) {
  constexpr unsigned upperHalf = 0x80;
  if (byte < upperHalf) return static_cast<char16_t>(byte);
  if (byte - upperHalf >= nextstepUpperHalf.size()) return std::nullopt;
  return nextstepUpperHalf[byte - upperHalf];
}

char control(char letter) {
  constexpr std::string_view letters = "abfnrtv", controls = "\a\b\f\n\r\t\v";
  const std::size_t position = letters.find(letter);
  return position == std::string_view::npos ? letter : controls[position];
}

// Parses the text after a backslash. `units` appends to `text`.
bool appendEscape(std::string_view& rest, std::string& text, Utf16Appender& units) {
  if (rest.empty()) return false;
  if (rest.front() == 'U') {
    rest.remove_prefix(1);
    const auto unit = takeNumber(rest, 4, 16);
    return unit && units.add(static_cast<char16_t>(*unit));
  }
  if (!units.complete()) return false;
  if (const auto byte = takeNumber(rest, 3, 8)) {
    const auto character = nextstepCharacter(*byte);
    return character && units.add(*character);
  }
  text += control(rest.front());
  rest.remove_prefix(1);
  return true;
}

}  // namespace

std::optional<std::string> unescapeListText(std::string_view quoted) {
  std::string text;
  Utf16Appender units(text);
  for (;;) {
    const std::string_view plain = quoted.substr(0, quoted.find('\\'));
    if (!plain.empty() && !units.complete()) return std::nullopt;
    text += plain;
    quoted.remove_prefix(plain.size());
    if (quoted.empty()) break;
    quoted.remove_prefix(1);
    if (!appendEscape(quoted, text, units)) return std::nullopt;
  }
  if (!units.complete()) return std::nullopt;
  return text;
}

}  // namespace platform

#include "support/address.h"

#include <algorithm>
#include <cstddef>

#include "platform/text_case.h"

namespace {

// Written out: the C library's classes of characters follow the user's locale.
constexpr std::string_view letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
constexpr std::string_view digits = "0123456789";
constexpr std::string_view hexDigits = "0123456789ABCDEFabcdef";
constexpr std::string_view marks = "-._~:/?#[]@!$&'()*+,;=";

bool isIn(std::string_view set, char character) {
  return set.find(character) != std::string_view::npos;
}

bool isEscape(std::string_view text) {
  return text.size() >= 3 && text[0] == '%' && isIn(hexDigits, text[1]) && isIn(hexDigits, text[2]);
}

bool mayStand(std::string_view text) {
  if (text[0] == '%') return isEscape(text);
  return isIn(letters, text[0]) || isIn(digits, text[0]) || isIn(marks, text[0]);
}

// RFC 3986, section 3.1; empty when there is none.
std::string_view schemeOf(std::string_view text) {
  const std::string_view scheme = text.substr(0, text.find(':'));
  if (scheme.empty() || scheme.size() == text.size() || !isIn(letters, scheme[0])) return {};
  const bool valid = std::ranges::all_of(
      scheme, [](char c) { return isIn(letters, c) || isIn(digits, c) || isIn("+-.", c); });
  return valid ? scheme : std::string_view();
}

}  // namespace

bool isAddress(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!mayStand(text.substr(i))) return false;
  }
  return !text.empty();
}

bool isLink(std::string_view text) {
  const std::string_view scheme = schemeOf(text);
  return isAddress(text) && !scheme.empty() && !platform::equalButForCase(scheme, "file");
}

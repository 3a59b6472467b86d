#include "support/address.h"

#include <algorithm>
#include <cstddef>

#include "platform/ipv6_literal.h"
#include "platform/text_case.h"

namespace {

// Listed explicitly, because isalnum(3) and its relatives depend on the locale.
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

bool isAllowedAtFront(std::string_view text) {
  if (text[0] == '%') return isEscape(text);
  return isIn(letters, text[0]) || isIn(digits, text[0]) || isIn(marks, text[0]);
}

bool isWebScheme(std::string_view text) {
  return platform::equalIgnoringCase(text, "http") || platform::equalIgnoringCase(text, "https");
}

// A host name or IPv4 address, without the escapes and punctuation that RFC 3986 additionally allows; or an
// IPv6 address.
bool isHost(std::string_view text) {
  if (platform::isIpv6Literal(text)) return true;
  return !text.empty() && std::ranges::all_of(text, [](char c) {
    return isIn(letters, c) || isIn(digits, c) || isIn("-._", c);
  });
}

bool isPort(std::string_view text) {
  return std::ranges::all_of(text, [](char c) { return isIn(digits, c); });
}

bool isHostAndPort(std::string_view text) {
  const std::size_t colon = text.find(':', text.find(']') + 1);
  const bool hasPort = colon != std::string_view::npos;
  return isHost(text.substr(0, colon)) && (!hasPort || isPort(text.substr(colon + 1)));
}

}  // namespace

bool isAddress(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!isAllowedAtFront(text.substr(i))) return false;
  }
  return !text.empty();
}

bool isLink(std::string_view text) {
  const std::size_t colon = text.find("://");
  if (!isAddress(text) || colon == std::string_view::npos || !isWebScheme(text.substr(0, colon)))
    return false;
  std::string_view authority = text.substr(colon + 3);
  authority = authority.substr(0, authority.find_first_of("/?#"));
  return isHostAndPort(authority.substr(authority.rfind('@') + 1));
}

#include "app/beacon.h"

#include <cstddef>

#include "platform/ipv6_literal.h"

namespace {

// Listed explicitly, because isalnum(3) and its relatives depend on the locale.
constexpr std::string_view unescapedCharacters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789!$&'()*+,-./:;=?@_~";

void appendEscape(std::string& address, unsigned char byte) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  address += '%';
  address += digits[byte >> 4U];
  address += digits[byte & 0xFU];
}

// Returns the offset of the host in an origin.
std::size_t hostStart(std::string_view server) {
  constexpr std::string_view separator = "://";
  const std::size_t found = server.find(separator);
  if (found == std::string_view::npos) return 0;
  const std::size_t start = found + separator.size();
  const std::string_view authority = server.substr(start, server.find_first_of("/?#", start) - start);
  return start + authority.rfind('@') + 1;
}

// Escapes `server` except for an IPv6 address in brackets, the only place where a URL may contain brackets.
std::string escapedServer(std::string_view server) {
  const std::size_t start = hostStart(server);
  const std::string_view host = server.substr(start, server.find(']', start) - start + 1);
  if (!platform::isIpv6LiteralWithZone(host)) return escapedForAddress(server);
  return escapedForAddress(server.substr(0, start))
      .append(host)
      .append(escapedForAddress(server.substr(start + host.size())));
}

}  // namespace

std::string escapedForAddress(std::string_view text) {
  std::string address;
  address.reserve(text.size());
  for (const char character : text) {
    if (unescapedCharacters.find(character) != std::string_view::npos) {
      address += character;
    } else {
      appendEscape(address, static_cast<unsigned char>(character));
    }
  }
  return address;
}

std::string beaconAddress(std::string_view server, std::string_view category, std::string_view value) {
  // Frozen: doc/compatibility.md.
  std::string page = "/product/nimba/binary/GATovalin.html?category=";
  page.append(category).append("&").append(category).append("=").append(value);
  return escapedServer(server) + escapedForAddress(page);
}

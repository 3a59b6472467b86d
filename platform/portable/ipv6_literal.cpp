#include "platform/ipv6_literal.h"

#include <cstddef>
#include <string>

namespace platform {
namespace {

// The characters of a zone identifier: the unreserved characters of RFC 3986.
constexpr std::string_view zoneCharacters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";

}  // namespace

bool isIpv6Literal(std::string_view host) {
  if (!host.starts_with('[') || !host.ends_with(']')) return false;
  const std::string_view address = host.substr(1, host.size() - 2);
  return address.find(':') != std::string_view::npos &&
         address.find_first_not_of("0123456789ABCDEFabcdef:.") == std::string_view::npos;
}

bool isIpv6LiteralWithZone(std::string_view host) {
  const std::size_t separator = host.find("%25");
  if (separator == std::string_view::npos) return isIpv6Literal(host);
  const std::string_view zone = host.substr(separator + 3);
  return zone.size() > 1 && zone.ends_with(']') &&
         zone.find_first_not_of(zoneCharacters) == zone.size() - 1 &&
         isIpv6Literal(std::string(host.substr(0, separator)) + "]");
}

}  // namespace platform

#pragma once

#include <string_view>

namespace platform {

// Whether `host` is an IPv6 address as a URL writes it, in brackets (RFC 3986, section 3.2.2), judged by its
// characters. Thread-safe.
[[nodiscard]] inline bool isIpv6Literal(std::string_view host) {
  if (!host.starts_with('[') || !host.ends_with(']')) return false;
  const std::string_view address = host.substr(1, host.size() - 2);
  return address.find(':') != std::string_view::npos &&
         address.find_first_not_of("0123456789ABCDEFabcdef:.") == std::string_view::npos;
}

}  // namespace platform

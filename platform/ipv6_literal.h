#pragma once

#include <string_view>

namespace platform {

// Returns whether `host` looks like an IPv6 address in brackets (RFC 3986, section 3.2.2). Checks the
// characters only. Thread-safe.
[[nodiscard]] bool isIpv6Literal(std::string_view host);

// The same, but also accepts a zone identifier after "%25" (RFC 6874). Browsers do not support zone
// identifiers; programs that fetch URLs do.
[[nodiscard]] bool isIpv6LiteralWithZone(std::string_view host);

}  // namespace platform

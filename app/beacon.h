#pragma once

#include <string>
#include <string_view>

// URLs of the analytics beacons on the product server. Thread-safe.

// Returns `text` with every byte that is not allowed in a URL percent-encoded. Keeps the URL delimiters and
// encodes percent signs.
[[nodiscard]] std::string escapedForAddress(std::string_view text);

// Returns the URL on `server` (an origin without a trailing slash) that counts `value` under `category`. The
// URL is escaped except for an IPv6 address in brackets.
[[nodiscard]] std::string beaconAddress(std::string_view server, std::string_view category,
                                        std::string_view value);

#pragma once

#include <string>
#include <string_view>

// The addresses under which the product server counts what the user does. Plain functions, any thread.

// `text` with what may not stand in an address, byte by byte, as percent escapes. The separators of an
// address stay, a percent sign does not.
[[nodiscard]] std::string escapedForAddress(std::string_view text);

// The page on `server` (an origin, no slash behind it) that counts `value` under `category`, escaped but for
// the brackets of an IPv6 host.
[[nodiscard]] std::string beaconAddress(std::string_view server, std::string_view category,
                                        std::string_view value);

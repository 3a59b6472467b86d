#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace fleet {

// Return the exact request heads that the agent sends to the server `host` (the value of "Host", with a port
// unless it is the default), including the empty line. Documented in doc/server.md.
[[nodiscard]] std::string uploadHead(std::string_view host, std::size_t bodySize);
[[nodiscard]] std::string versionFetchHead(std::string_view host);

// Returns the size of an upload request for a file of that size.
[[nodiscard]] std::size_t uploadSize(std::string_view host, std::size_t fileSize);

// The number of bytes an agent sends per beacon. Depends on the web engine; measured with that of Debian 12.
inline constexpr std::size_t measuredBeaconSize = 500;

// Returns the size of a day's file with one start, one end, four device events with names of eight bytes and
// 40 transfers with names of three bytes.
[[nodiscard]] std::size_t typicalFileSize();

}  // namespace fleet

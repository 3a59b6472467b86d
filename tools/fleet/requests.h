#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace fleet {

// The heads of the agent's own requests to a server of this name (its "Host", with the port where it isn't
// the scheme's), to the byte, with the empty line behind them. doc/server.md shows them.
[[nodiscard]] std::string uploadHead(std::string_view host, std::size_t bodySize);
[[nodiscard]] std::string versionFetchHead(std::string_view host);

// A whole upload of a file of that size.
[[nodiscard]] std::size_t uploadSize(std::string_view host, std::size_t fileSize);

// What an agent sends for one beacon; depends on the web engine, and was measured with that of Debian 12.
inline constexpr std::size_t measuredBeaconSize = 500;

// The file of a day with one start, one end, four device events with names of eight bytes and 40 transfers
// with names of three.
[[nodiscard]] std::size_t typicalFileSize();

}  // namespace fleet

#pragma once

#include <sys/socket.h>

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace helpers {

// The addresses whose first `bits` equal those of `start`. IPv4 in mapped form, ::ffff:A.B.C.D.
struct Network {
  std::array<std::uint8_t, 16> start{};
  unsigned bits = 128;
  bool operator==(const Network&) const = default;
};

// Returns the addresses that are reachable without a router: this machine's addresses, the networks of its
// interfaces, and the peers of its point-to-point interfaces. Returns nullopt if getifaddrs(3) fails.
// Thread-safe.
[[nodiscard]] std::optional<std::vector<Network>> ownNetworks();

// Returns whether one of the networks contains this IPv4 or IPv6 address, or the IPv4 address embedded in it.
// Thread-safe.
[[nodiscard]] bool hold(const std::vector<Network>& networks, const sockaddr& address);

}  // namespace helpers

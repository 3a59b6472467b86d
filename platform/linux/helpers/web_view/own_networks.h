#pragma once

#include <sys/socket.h>

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace helpers {

// The addresses that begin like `start`, in their first `bits`. IPv4 in the mapped form, ::ffff:A.B.C.D.
struct Network {
  std::array<std::uint8_t, 16> start{};
  unsigned bits = 128;
  bool operator==(const Network&) const = default;
};

// What is reached without a router: this machine's addresses, the networks on its links, and the other ends
// of its point-to-point links. Returns nullopt if the system does not tell. Any thread.
[[nodiscard]] std::optional<std::vector<Network>> ownNetworks();

// Whether one of them holds this IPv4 or IPv6 address or the IPv4 address that is embedded in it.
[[nodiscard]] bool hold(const std::vector<Network>& networks, const sockaddr& address);

}  // namespace helpers

#pragma once

#include <sys/socket.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace helpers {

// One end of a connection by name: a host in lower case, or an address as inet_ntop writes it, and a port.
struct Endpoint {
  std::string host;
  std::uint16_t port = 0;
  bool operator==(const Endpoint&) const = default;
};

// The endpoint for a host as an address on the web names it: in either case, an IPv6 address in brackets or
// without.
[[nodiscard]] Endpoint endpointOf(std::string host, std::uint16_t port);

// An IPv6 address, or an IPv4 address in the mapped form, ::ffff:A.B.C.D.
using AddressBytes = std::array<std::uint8_t, 16>;

// Returns nullopt for an address of another family.
[[nodiscard]] std::optional<AddressBytes> addressBytes(const sockaddr& address);

// The IPv4 address, in the mapped form, that an IPv6 address leads to: a mapped, NAT64 or 6to4 one.
[[nodiscard]] std::optional<AddressBytes> embeddedAddress(const AddressBytes& address);

// Whether this IPv4 or IPv6 address is one of the public Internet's: not this machine, a private or
// link-local network, a multicast group or a reserved range, nor an IPv6 form of such an IPv4 address.
[[nodiscard]] bool isPublic(const sockaddr& address);

// Whether the host is an address that is not public, a number in another form than that of an IPv4 address
// (resolvers differ about it), or a name that stands for this machine or one of a local network.
[[nodiscard]] bool isLocal(const std::string& host);

// How far a page may connect to an endpoint.
enum class Passage {
  None,
  PublicTls,  // to public addresses, by TLS
  Free,       // wherever it is, in any form
};

// A page whose own origin is `origin` reaches that one, and others at the port of https.
[[nodiscard]] Passage passageTo(const Endpoint& target, const std::optional<Endpoint>& origin);

}  // namespace helpers

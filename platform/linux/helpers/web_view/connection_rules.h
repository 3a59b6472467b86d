#pragma once

#include <sys/socket.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace helpers {

// A host and a port. The host is a name in lower case, or an address as inet_ntop(3) writes it.
struct Endpoint {
  std::string host;
  std::uint16_t port = 0;
  bool operator==(const Endpoint&) const = default;
};

// Returns the endpoint of a host in the syntax of a URL: any case, an IPv6 address with or without brackets.
// Thread-safe, like all functions of this header.
[[nodiscard]] Endpoint endpointOf(std::string host, std::uint16_t port);

// An IPv6 address, or an IPv4 address in mapped form, ::ffff:A.B.C.D.
using AddressBytes = std::array<std::uint8_t, 16>;

// Returns the bytes of an IPv4 or IPv6 address; nullopt for other address families.
[[nodiscard]] std::optional<AddressBytes> addressBytes(const sockaddr& address);

// Returns the IPv4 address, in mapped form, that is embedded in a mapped, NAT64 or 6to4 address; nullopt for
// other addresses.
[[nodiscard]] std::optional<AddressBytes> embeddedAddress(const AddressBytes& address);

// Returns whether this IPv4 or IPv6 address is on the public Internet: not the local host, a private or
// link-local network, a multicast group or a reserved range, nor an IPv6 address that embeds such an IPv4
// address.
[[nodiscard]] bool isPublic(const sockaddr& address);

// Returns whether the host is an address that is not public, a number in another syntax than that of an IPv4
// address (resolvers disagree about those), or a name of the local host or the local network.
[[nodiscard]] bool isLocal(const std::string& host);

// How a page may connect to an endpoint.
enum class Access {
  None,
  PublicTls,  // to public addresses, over TLS
  Any,        // to any address, with any protocol
};

// Returns how a page with the origin `origin` may connect to `target`: Any for its own origin, PublicTls for
// port 443 of hosts that are not local, otherwise None.
[[nodiscard]] Access accessTo(const Endpoint& target, const std::optional<Endpoint>& origin);

}  // namespace helpers

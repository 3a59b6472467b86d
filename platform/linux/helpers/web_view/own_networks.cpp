#include "platform/linux/helpers/web_view/own_networks.h"

#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>

#include <algorithm>
#include <bit>
#include <memory>

#include "platform/linux/helpers/web_view/connection_rules.h"

namespace helpers {
namespace {

constexpr unsigned bitsBefore4 = 96;

bool isInternetAddress(const sockaddr* address) {
  return address != nullptr && (address->sa_family == AF_INET || address->sa_family == AF_INET6);
}

bool isIn(const Network& network, const AddressBytes& address) {
  const std::size_t whole = network.bits / 8;
  const auto mask = static_cast<std::uint8_t>(0xff00U >> (network.bits % 8));
  return std::equal(address.begin(), address.begin() + whole, network.start.begin()) &&
         (mask == 0 || ((address[whole] ^ network.start[whole]) & mask) == 0);
}

// An interface whose netmask is all zeros has no network of its own, so count it as a single address.
unsigned prefixBits(const sockaddr& netmask) {
  const auto bytes = addressBytes(netmask);
  unsigned bits = 0;
  for (const std::uint8_t byte : *bytes) bits += static_cast<unsigned>(std::popcount(byte));
  if (netmask.sa_family == AF_INET6) return bits == 0 ? 128 : bits;
  // The mapped form has 16 bits set before the IPv4 address.
  return bits == 16 ? 128 : bits - 16 + bitsBefore4;
}

void add(std::vector<Network>& networks, const ifaddrs& entry) {
  if (!isInternetAddress(entry.ifa_addr)) return;
  const bool hasMask = isInternetAddress(entry.ifa_netmask);
  networks.push_back({*addressBytes(*entry.ifa_addr), hasMask ? prefixBits(*entry.ifa_netmask) : 128});
  if ((entry.ifa_flags & IFF_POINTOPOINT) == 0 || !isInternetAddress(entry.ifa_dstaddr)) return;
  networks.push_back({*addressBytes(*entry.ifa_dstaddr), 128});
}

}  // namespace

std::optional<std::vector<Network>> ownNetworks() {
  ifaddrs* list = nullptr;
  if (::getifaddrs(&list) != 0) return std::nullopt;
  const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> owner(list, ::freeifaddrs);
  std::vector<Network> networks;
  for (const ifaddrs* entry = list; entry != nullptr; entry = entry->ifa_next) add(networks, *entry);
  return networks;
}

bool hold(const std::vector<Network>& networks, const sockaddr& address) {
  const auto bytes = addressBytes(address);
  if (!bytes) return false;
  const auto embedded = embeddedAddress(*bytes);
  return std::ranges::any_of(networks, [&](const Network& network) {
    return isIn(network, *bytes) || (embedded && isIn(network, *embedded));
  });
}

}  // namespace helpers

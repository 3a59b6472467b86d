#include "platform/linux/helpers/web_view/connection_rules.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <string_view>

namespace helpers {
namespace {

using Bytes = std::span<const std::uint8_t>;

struct Range {
  AddressBytes start;
  unsigned bits;
};

// The IANA special-purpose address registries, and multicast.
constexpr std::array notPublic4{
    Range{{0}, 8},         Range{{10}, 8},       Range{{100, 64}, 10},      Range{{127}, 8},
    Range{{169, 254}, 16}, Range{{172, 16}, 12}, Range{{192, 0, 0}, 24},    Range{{192, 0, 2}, 24},
    Range{{192, 168}, 16}, Range{{198, 18}, 15}, Range{{198, 51, 100}, 24}, Range{{203, 0, 113}, 24},
    Range{{224}, 3},
};
constexpr Range globalUnicast6{{0x20}, 3};
constexpr std::array notPublic6{
    Range{{0x20, 0x01, 0, 0}, 23},  // includes Teredo, which embeds an IPv4 address
    Range{{0x20, 0x01, 0x0d, 0xb8}, 32},
    Range{{0x3f, 0xff, 0}, 20},
};

// IPv6 ranges that embed an IPv4 address at byte `offset`.
struct Embedding {
  Range range;
  std::size_t offset;
};
constexpr std::array embeddings{
    Embedding{{{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff}, 96}, 12},
    Embedding{{{0, 0x64, 0xff, 0x9b}, 96}, 12},
    Embedding{{{0x20, 0x02}, 16}, 2},
};

bool isIn(const Range& range, Bytes address) {
  const std::size_t whole = range.bits / 8;
  const auto mask = static_cast<std::uint8_t>(0xff00U >> (range.bits % 8));
  return std::equal(address.begin(), address.begin() + static_cast<std::ptrdiff_t>(whole),
                    range.start.begin()) &&
         (mask == 0 || (address[whole] & mask) == (range.start[whole] & mask));
}

bool isPublic4(Bytes address) {
  return std::ranges::none_of(notPublic4, [&](const Range& range) { return isIn(range, address); });
}

bool isPublic16(const AddressBytes& address) {
  constexpr std::size_t offset4 = 12;
  if (const auto embedded = embeddedAddress(address)) return isPublic4(Bytes(*embedded).subspan(offset4));
  return isIn(globalUnicast6, address) &&
         std::ranges::none_of(notPublic6, [&](const Range& range) { return isIn(range, address); });
}

bool isPublicText(const std::string& host) {
  AddressBytes bytes{};
  if (::inet_pton(AF_INET, host.c_str(), bytes.data()) == 1) return isPublic4(Bytes(bytes).first(4));
  return ::inet_pton(AF_INET6, host.c_str(), bytes.data()) == 1 && isPublic16(bytes);
}

// Some resolvers read such a name as an IPv4 address: "127.1", "0x7f.1" and "2130706433" are the local host.
bool endsInNumber(std::string_view host) {
  const std::string_view label = host.substr(host.rfind('.') + 1);
  return label.starts_with("0x") || label.find_first_not_of("0123456789") == std::string_view::npos;
}

// Names that no public server has: special-use names (RFC 6761, 6762 and 8375) and names of a single label.
bool isLocalName(std::string_view host) {
  constexpr std::array<std::string_view, 5> domains{".localhost", ".localdomain", ".local", ".internal",
                                                    ".home.arpa"};
  return host.find('.') == std::string_view::npos ||
         std::ranges::any_of(domains, [&](std::string_view domain) { return host.ends_with(domain); });
}

char lowerCase(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

}  // namespace

Endpoint endpointOf(std::string host, std::uint16_t port) {
  if (host.starts_with('[') && host.ends_with(']')) host = host.substr(1, host.size() - 2);
  std::ranges::transform(host, host.begin(), lowerCase);
  in6_addr address{};
  std::array<char, INET6_ADDRSTRLEN> text{};
  if (::inet_pton(AF_INET6, host.c_str(), &address) == 1) {
    host = ::inet_ntop(AF_INET6, &address, text.data(), text.size());
  }
  return {std::move(host), port};
}

std::optional<AddressBytes> addressBytes(const sockaddr& address) {
  if (address.sa_family == AF_INET) {
    AddressBytes bytes{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff};
    std::memcpy(bytes.data() + 12, &reinterpret_cast<const sockaddr_in&>(address).sin_addr, 4);
    return bytes;
  }
  if (address.sa_family != AF_INET6) return std::nullopt;
  AddressBytes bytes{};
  std::memcpy(bytes.data(), &reinterpret_cast<const sockaddr_in6&>(address).sin6_addr, bytes.size());
  return bytes;
}

std::optional<AddressBytes> embeddedAddress(const AddressBytes& address) {
  const auto* found = std::ranges::find_if(
      embeddings, [&](const Embedding& embedding) { return isIn(embedding.range, address); });
  if (found == embeddings.end()) return std::nullopt;
  AddressBytes mapped{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff};
  std::copy_n(address.begin() + found->offset, 4, mapped.begin() + 12);
  return mapped;
}

bool isPublic(const sockaddr& address) {
  const auto bytes = addressBytes(address);
  return bytes && isPublic16(*bytes);
}

bool isLocal(const std::string& host) {
  const std::string name = host.substr(0, host.find_last_not_of('.') + 1);
  if (endsInNumber(name) || name.find(':') != std::string::npos) return !isPublicText(name);
  return isLocalName(name);
}

Access accessTo(const Endpoint& target, const std::optional<Endpoint>& origin) {
  constexpr std::uint16_t https = 443;
  if (origin && target == *origin) return Access::Any;
  return target.port == https && !isLocal(target.host) ? Access::PublicTls : Access::None;
}

}  // namespace helpers

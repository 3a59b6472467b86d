#include "platform/linux/helpers/web_view/socks_request.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <array>
#include <string>

namespace helpers {
namespace {

using platform::FileDescriptor;

constexpr char version = 5;
constexpr char withPassword = 2;
constexpr char passwordVersion = 1;
constexpr char connectCommand = 1;

enum AddressType : unsigned char { Address4 = 1, Name = 3, Address6 = 4 };

// Reads exactly `count` bytes.
std::optional<std::string> readBytes(const FileDescriptor& client, std::size_t count) {
  std::string bytes(count, '\0');
  if (count == 0) return bytes;
  const ssize_t got = ::recv(client.get(), bytes.data(), count, MSG_WAITALL);
  return got == static_cast<ssize_t>(count) ? std::optional(bytes) : std::nullopt;
}

// Reads a length byte and that many bytes.
std::optional<std::string> readCounted(const FileDescriptor& client) {
  const auto count = readBytes(client, 1);
  return count ? readBytes(client, static_cast<unsigned char>(count->front())) : std::nullopt;
}

bool sendBytes(const FileDescriptor& client, std::string_view bytes) {
  return ::send(client.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
}

bool negotiatePassword(const FileDescriptor& client) {
  const auto first = readBytes(client, 1);
  if (!first || first->front() != version) return false;
  const auto methods = readCounted(client);
  const bool offered = methods && methods->find(withPassword) != std::string::npos;
  return sendBytes(client, {offered ? "\x05\x02" : "\x05\xff", 2}) && offered;
}

bool verifyPassword(const FileDescriptor& client, std::string_view password) {
  const auto first = readBytes(client, 1);
  if (!first || first->front() != passwordVersion) return false;
  const auto user = readCounted(client);
  const auto given = user ? readCounted(client) : std::nullopt;
  const bool right = given && *user == socksUser && *given == password;
  return sendBytes(client, {right ? "\x01\x00" : "\x01\x01", 2}) && right;
}

template <typename Address>
std::optional<std::string> readAddress(const FileDescriptor& client, int family) {
  const auto bytes = readBytes(client, sizeof(Address));
  std::array<char, INET6_ADDRSTRLEN> text{};
  if (!bytes || ::inet_ntop(family, bytes->data(), text.data(), text.size()) == nullptr) return std::nullopt;
  return text.data();
}

std::optional<std::string> readHost(const FileDescriptor& client, char type) {
  switch (type) {
    case Address4:
      return readAddress<in_addr>(client, AF_INET);
    case Address6:
      return readAddress<in6_addr>(client, AF_INET6);
    case Name:
      return readCounted(client);
    default:
      return std::nullopt;
  }
}

// Other characters could change the meaning of the addresses and requests that the user's proxy receives.
bool isHost(std::string_view text) {
  constexpr std::string_view characters =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789.-_:";
  return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

std::optional<Endpoint> readTarget(const FileDescriptor& client) {
  const auto head = readBytes(client, 4);
  if (!head || (*head)[0] != version || (*head)[1] != connectCommand) return std::nullopt;
  auto host = readHost(client, (*head)[3]);
  const auto port = host ? readBytes(client, 2) : std::nullopt;
  if (!port || !isHost(*host)) return std::nullopt;
  const auto high = static_cast<unsigned char>((*port)[0]);
  const auto low = static_cast<unsigned char>((*port)[1]);
  return endpointOf(std::move(*host), static_cast<std::uint16_t>(high << 8U | low));
}

}  // namespace

std::optional<Endpoint> readSocksRequest(const FileDescriptor& client, std::string_view password) {
  constexpr timeval receiveTimeout{30, 0};
  ::setsockopt(client.get(), SOL_SOCKET, SO_RCVTIMEO, &receiveTimeout, sizeof receiveTimeout);
  if (!negotiatePassword(client) || !verifyPassword(client, password)) return std::nullopt;
  return readTarget(client);
}

bool sendSocksReply(const FileDescriptor& client, SocksReply reply) {
  const std::array<char, 10> message{version, static_cast<char>(reply), 0, Address4};
  return sendBytes(client, {message.data(), message.size()});
}

}  // namespace helpers

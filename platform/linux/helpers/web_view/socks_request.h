#pragma once

#include <optional>
#include <string_view>

#include "platform/file_descriptor.h"
#include "platform/linux/helpers/web_view/connection_rules.h"

namespace helpers {

inline constexpr std::string_view socksUser = "view";

enum class SocksReply : unsigned char { Connected = 0, Refused = 2, Unreachable = 4 };

// Server side of SOCKS 5 (RFC 1928) up to the request, with username/password authentication (RFC 1929).
// Blocks up to 30 s for each read. Returns nullopt if the client disconnects, fails the authentication,
// requests another command than CONNECT, or names an invalid host. Thread-safe.
[[nodiscard]] std::optional<Endpoint> readSocksRequest(const platform::FileDescriptor& client,
                                                       std::string_view password);
[[nodiscard]] bool sendSocksReply(const platform::FileDescriptor& client, SocksReply reply);

}  // namespace helpers

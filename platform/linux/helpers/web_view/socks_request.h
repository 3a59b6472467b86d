#pragma once

#include <optional>
#include <string_view>

#include "platform/file_descriptor.h"
#include "platform/linux/helpers/web_view/connection_rules.h"

namespace helpers {

inline constexpr std::string_view socksUser = "view";

enum class SocksReply : unsigned char { Connected = 0, Refused = 2, Unreachable = 4 };

// The server's side of SOCKS 5 (RFC 1928) up to the request, with a user's name and password (RFC 1929).
// Waits for the client, half a minute for each of its messages. Returns nothing if the client leaves, gives
// another name or password, asks for anything but a connection, or names a host that is none.
[[nodiscard]] std::optional<Endpoint> readSocksRequest(const platform::FileDescriptor& client,
                                                       std::string_view password);
[[nodiscard]] bool sendSocksReply(const platform::FileDescriptor& client, SocksReply reply);

}  // namespace helpers

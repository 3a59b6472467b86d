#pragma once

#include <optional>

#include "platform/file_descriptor.h"
#include "platform/linux/helpers/web_view/connection_rules.h"

namespace helpers {

// Returns a connection to the endpoint through the proxy that the user's environment sets for it; nullopt if
// none is set; an invalid descriptor if the proxy cannot be reached, refuses, or itself requires TLS. Blocks.
// Thread-safe.
[[nodiscard]] std::optional<platform::FileDescriptor> connectThroughUserProxy(const Endpoint& target);

}  // namespace helpers

#pragma once

#include <optional>

#include "platform/file_descriptor.h"
#include "platform/linux/helpers/web_view/connection_rules.h"

namespace helpers {

// Returns a connection to the endpoint through the proxy that the user's environment names for it: none if it
// names none, an invalid descriptor if the proxy can't be reached, refuses, or is itself one by TLS. Blocks.
// Any thread.
[[nodiscard]] std::optional<platform::FileDescriptor> connectThroughUsersProxy(const Endpoint& target);

}  // namespace helpers

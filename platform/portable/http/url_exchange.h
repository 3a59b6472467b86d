#pragma once

#include <optional>
#include <string>

#include "platform/url_request.h"

namespace platform {

// Sends a GET or POST and blocks until the reply is complete. Returns nullopt if no complete reply arrives in
// time. Throws std::bad_alloc. curl_global_init must have been called.
[[nodiscard]] std::optional<std::string> exchange(const UrlRequest& request);

}  // namespace platform

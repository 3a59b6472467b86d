#pragma once

#include <optional>
#include <string>

#include "platform/url_request.h"

namespace platform {

// Sends a GET or POST and waits for its reply on the calling thread; nothing when no whole reply came in
// time. Throws when there is no memory to send it. libcurl must have been initialized.
[[nodiscard]] std::optional<std::string> exchange(const UrlRequest& request);

}  // namespace platform

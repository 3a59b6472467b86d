#pragma once

#include <chrono>
#include <variant>

#include "platform/linux/helpers/helper_program.h"

namespace helpers {

// Serve the addresses that come in, and end when none has come for this long.
struct ServeAddresses {
  std::chrono::seconds idle{15};
};

using WebViewRequest = std::variant<ShowUsage, Refusal, ServeAddresses>;

[[nodiscard]] WebViewRequest parseWebViewRequest(const Arguments& arguments);

}  // namespace helpers

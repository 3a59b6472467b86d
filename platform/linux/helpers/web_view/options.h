#pragma once

#include <chrono>
#include <variant>

#include "platform/linux/helpers/helper_program.h"

namespace helpers {

// Request to load incoming addresses and to end when none has arrived for `idle`.
struct ServeAddresses {
  std::chrono::seconds idle{15};
};

using WebViewRequest = std::variant<ShowUsage, Refusal, ServeAddresses>;

[[nodiscard]] WebViewRequest parseWebViewRequest(const Arguments& arguments);

}  // namespace helpers

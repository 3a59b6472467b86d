#pragma once

#include <string>
#include <string_view>
#include <variant>

#include "platform/linux/helpers/helper_program.h"

namespace helpers {

// Request to unload the launch agent with this label.
struct UnloadRequest {
  std::string label;
};

[[nodiscard]] std::variant<ShowUsage, Refusal, UnloadRequest> parseUnloadRequest(const Arguments& arguments);

// Returns the user unit that systemd generates from the autostart entry LABEL.desktop, see
// systemd-xdg-autostart-generator(8).
[[nodiscard]] std::string autostartUnit(std::string_view label);

}  // namespace helpers

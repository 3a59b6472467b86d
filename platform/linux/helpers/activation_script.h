#pragma once

#include <string>
#include <string_view>
#include <variant>

#include "platform/linux/helpers/helper_program.h"

namespace helpers {

// The only supported script: activate the frontmost application again.
struct ActivateFrontApplication {};

[[nodiscard]] std::variant<ShowUsage, Refusal, ActivateFrontApplication> parseScript(
    const Arguments& arguments);

}  // namespace helpers

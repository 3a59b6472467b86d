#pragma once

#include <string>
#include <string_view>
#include <variant>

#include "platform/linux/helpers/helper_program.h"

namespace helpers {

// The one script there is: bring the application in front forward again.
struct ActivateFrontApplication {};

[[nodiscard]] std::variant<ShowUsage, Refusal, ActivateFrontApplication> parseScript(
    const Arguments& arguments);

}  // namespace helpers

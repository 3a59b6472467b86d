#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform {

// The text that stands between the quotes of a string in the old text form: "\n" and its kin, "\U0041" for a
// UTF-16 unit (a surrogate pair is two of them), "\101" for a byte in the NEXTSTEP encoding; any other
// character after a backslash stands for itself. Nothing for an escape that means no character.
[[nodiscard]] std::optional<std::string> unescapeListText(std::string_view quoted);

}  // namespace platform

#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform {

// Decodes the contents of a quoted string of the old text format: "\n" and similar, "\U0041" for a UTF-16
// code unit (a surrogate pair is two of them), "\101" for a byte in the NEXTSTEP encoding; any other
// character after a backslash stands for itself. Returns nullopt if an escape is not a character.
// Thread-safe.
[[nodiscard]] std::optional<std::string> unescapeListText(std::string_view quoted);

}  // namespace platform

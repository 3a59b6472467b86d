#pragma once

#include <string>
#include <string_view>

namespace tools {

// Returns the bytes in a form that is safe for a terminal and a log line: printable ASCII unchanged, except
// \" and \\; all other bytes as \xNN. Thread-safe.
[[nodiscard]] std::string escapedText(std::string_view bytes);

// The same in double quotes.
[[nodiscard]] std::string quotedText(std::string_view bytes);

}  // namespace tools

#pragma once

#include <string>
#include <string_view>

// Returns text from a server in a form that is safe to print on a terminal: one line of at most 1000
// characters, ending in an ellipsis if it was cut. Escapes control characters, line and paragraph separators
// and bidirectional formatting characters as "\u000a", and bytes that are not UTF-8 as "\xff". Thread-safe.
[[nodiscard]] std::string consoleText(std::string_view text);

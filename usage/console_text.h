#pragma once

#include <string>
#include <string_view>

// What a server sent, as it is printed on the console: one line of at most 1000 characters, the last one an
// ellipsis if there was more. Control characters, separators of lines and paragraphs and marks of the writing
// direction become "\u000a", because a terminal would obey them; bytes that are no UTF-8 become "\xff".
// Thread-safe.
[[nodiscard]] std::string consoleText(std::string_view text);

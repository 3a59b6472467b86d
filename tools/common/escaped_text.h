#pragma once

#include <string>
#include <string_view>

namespace tools {

// The bytes as text that fits a terminal and a line of a log: printable ASCII as it is, but \" and \\, all
// else as \xNN. Any thread.
[[nodiscard]] std::string escapedText(std::string_view bytes);

// The same between double quotes.
[[nodiscard]] std::string quotedText(std::string_view bytes);

}  // namespace tools

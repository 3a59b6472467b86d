#pragma once

#include <string>
#include <string_view>

namespace tools {

[[nodiscard]] bool isUtf8(std::string_view bytes);

// Returns the bytes as a JSON string with quotes. Escapes what JSON requires and replaces each byte that is
// not part of valid UTF-8 by U+FFFD. Thread-safe, as all functions here.
[[nodiscard]] std::string jsonString(std::string_view bytes);

// Returns two lower-case hexadecimal digits for each byte.
[[nodiscard]] std::string hexText(std::string_view bytes);

}  // namespace tools

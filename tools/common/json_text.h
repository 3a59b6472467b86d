#pragma once

#include <string>
#include <string_view>

namespace tools {

[[nodiscard]] bool isUtf8(std::string_view bytes);

// The bytes as a JSON string with its quotes. Valid UTF-8 stands as it is, but for what JSON wants escaped;
// every byte that is no part of valid UTF-8 becomes U+FFFD.
[[nodiscard]] std::string jsonString(std::string_view bytes);

// Two lower-case digits for each byte.
[[nodiscard]] std::string hexText(std::string_view bytes);

}  // namespace tools

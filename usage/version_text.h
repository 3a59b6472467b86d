#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

// Helpers for parsing version texts. Thread-safe.

// Splits `text` at every character of `separators` and keeps empty pieces. The pieces point into `text`.
[[nodiscard]] std::vector<std::string_view> splitAtEach(std::string_view text, std::string_view separators);

// Returns the number at the beginning of `text`: optional white space, an optional sign and decimal digits up
// to the first other character. Returns 0 if there are no digits. Saturates at the limits of 64 bits.
[[nodiscard]] std::int64_t integerValue(std::string_view text);

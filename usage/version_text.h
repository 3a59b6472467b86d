#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

// The parts that versions are compared by. Any thread.

// The pieces of `text` between every character of `separators`; empty pieces count. They point into `text`.
[[nodiscard]] std::vector<std::string_view> splitAtEach(std::string_view text, std::string_view separators);

// The number that `text` begins with: white space is skipped, then come an optional sign and decimal digits
// up to the first other character. 0 without digits; a number beyond 64 bits gives the nearest one within.
[[nodiscard]] std::int64_t integerValue(std::string_view text);

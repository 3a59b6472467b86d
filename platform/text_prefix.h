#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace platform {

// Returns the longest prefix of a UTF-8 text with at most `maxCharacters` user-perceived characters (grapheme
// clusters) and at most `maxCodePoints` code points. Never splits a grapheme cluster, unless the first one
// alone exceeds `maxCodePoints`. Replaces invalid UTF-8 by U+FFFD. The run time is bounded by
// `maxCodePoints`, not by the length of the text. Thread-safe.
[[nodiscard]] std::string textPrefix(std::string_view text, std::size_t maxCharacters,
                                     std::size_t maxCodePoints);

}  // namespace platform

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace platform {

// Returns the beginning of a UTF-8 text that holds at most `maxCharacters` characters as readers see them,
// each a letter with all the marks on it or a picture made of several symbols, and at most `maxCodePoints`
// code points. Never ends inside a character, unless that is the first one and alone longer than
// `maxCodePoints`. What is no UTF-8 comes back as U+FFFD. Its time doesn't grow with the text beyond
// `maxCodePoints`. Any thread.
[[nodiscard]] std::string textPrefix(std::string_view text, std::size_t maxCharacters,
                                     std::size_t maxCodePoints);

}  // namespace platform

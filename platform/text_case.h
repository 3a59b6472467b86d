#pragma once

#include <algorithm>
#include <string_view>

namespace platform {

// Returns whether the texts are equal, ignoring the case of the letters A to Z. Independent of the locale.
// Thread-safe.
[[nodiscard]] inline bool equalIgnoringCase(std::string_view one, std::string_view other) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return std::ranges::equal(one, other, {}, lower, lower);
}

}  // namespace platform

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Stores the agent's version, CFBundleVersion of its bundle at start, in `version` and returns 0. Returns -1
// and leaves `version` unchanged if the program runs outside a bundle or the bundle has no version.
// Thread-safe.
[[nodiscard]] std::int32_t getBundleVersion(std::optional<std::string>& version);

// What callers log on failure. It is the result of printf(3) with the format "% getBundleVersion fail", where
// "% g" formats a number. Frozen: doc/compatibility.md.
inline constexpr std::string_view bundleVersionFailure = " 0etBundleVersion fail";

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Stores the agent's own version, CFBundleVersion of its bundle when it was started, in `version`. Returns 0;
// or -1, `version` untouched, when the program runs outside a bundle or the bundle does not tell. Any thread.
[[nodiscard]] std::int32_t getBundleVersion(std::optional<std::string>& version);

// What the callers log on failure. The message's format is "% getBundleVersion fail", in which printf(3)
// takes "% g" for a number; support knows the line by what comes out of that
// (doc/compatibility.md).
inline constexpr std::string_view bundleVersionFailure = " 0etBundleVersion fail";

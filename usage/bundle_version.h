#pragma once

#include <cstdint>
#include <optional>
#include <string>

// Stores the agent's own version, CFBundleVersion of its bundle, in `version`. Returns 0; or -1, `version`
// untouched, when the program runs outside a bundle or the bundle does not tell. Any thread.
[[nodiscard]] std::int32_t getBundleVersion(std::optional<std::string>& version);

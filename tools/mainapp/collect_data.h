#pragma once

#include <optional>
#include <string>

namespace tools {

// The "-ncdat" messages with which the main application reports what happens; doc/usage_record_format.md has
// their layout. `words` is what a person typed; nothing when it makes no message.

// "3 NAME" or "4 NAME": a device event. The name may hold blanks, and may be missing.
[[nodiscard]] std::optional<std::string> deviceEventMessage(const std::string& words);

// "KIND SIZE NAME": one transfer.
[[nodiscard]] std::optional<std::string> transferMessage(const std::string& words);

}  // namespace tools

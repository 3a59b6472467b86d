#pragma once

#include <optional>
#include <string>

namespace tools {

// Build the "-ncdat" messages of the main application (doc/usage_record_format.md). `words` is the argument
// typed by the user. Return nullopt if it is invalid.

// Parses "3 NAME" or "4 NAME": a device event. The name may contain spaces and may be missing.
[[nodiscard]] std::optional<std::string> deviceEventMessage(const std::string& words);

// Parses "KIND SIZE NAME": one transfer.
[[nodiscard]] std::optional<std::string> transferMessage(const std::string& words);

}  // namespace tools

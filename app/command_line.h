#pragma once

#include <optional>
#include <span>
#include <string_view>

// Judges the agent's arguments: --help and --version print to standard output and end with 0, anything else
// is refused on standard error with 2. No arguments: nothing, the agent goes on. An
// argument that begins with "-psn_" comes from the desktop and is ignored. At the start, before there are
// threads.
[[nodiscard]] std::optional<int> handleArguments(std::span<const std::string_view> arguments);

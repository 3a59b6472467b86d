#pragma once

#include <optional>
#include <span>
#include <string_view>

// Handles the agent's command line. Prints the text for --help or --version on standard output and returns 0.
// Prints an error on standard error and returns 2 for any other argument. Returns nullopt, so that the agent
// starts, if there are no arguments; ignores arguments that begin with "-psn_", which desktops add. Call it
// before any thread is started.
[[nodiscard]] std::optional<int> handleArguments(std::span<const std::string_view> arguments);

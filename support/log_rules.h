#pragma once

#include <array>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>

// The decisions of the log collection, as functions of what they decide on. Any thread.

// "tovalinlog_2026-11-15T22-05-12": the folder below /tmp and the archive are called so.
[[nodiscard]] std::string collectionName(const std::tm& now);

// The shell commands that fill the folder and pack it, in their order. Whatever one of them fails at, the
// next is to be run. What they make is the user's alone; a folder that stands there already is filled only
// when it is his. Nothing when one would not fit the 512 bytes that it may take with its terminator.
[[nodiscard]] std::optional<std::array<std::string, 6>> collectionCommands(std::string_view name);

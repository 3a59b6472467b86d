#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/property_list.h"

// Pure functions for the decisions of the version check. Thread-safe.

// Returns whether `recent` is newer than `current`. Compares the first three dot-separated components as
// numbers; a missing component is 0, a missing version is 0.0.0.
[[nodiscard]] bool isNewerVersion(const std::optional<std::string>& current,
                                  const std::optional<std::string>& recent);

// Returns the newest released version from the body of the server's list, a dictionary with the string
// "version". Returns nullopt for anything else.
[[nodiscard]] std::optional<std::string> versionInList(std::string_view body);

// Returns the shell command that copies the updater out of the main application's bundle. Returns nullopt if
// the command with its terminator exceeds 512 bytes.
[[nodiscard]] std::optional<std::string> copyUpdaterCommand(std::string_view bundlePath);

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/property_list.h"

// The decisions of the version check, as functions of what they decide on. Any thread.

// Whether `recent` is newer than `current`: the first three components, between the dots, are compared as
// numbers, a missing one as 0. No version counts as 0.0.0.
[[nodiscard]] bool isNewerVersion(const std::optional<std::string>& current,
                                  const std::optional<std::string>& recent);

// The newest released version, from the body of the server's list: a dictionary whose "version" is a string.
// Nothing for anything else.
[[nodiscard]] std::optional<std::string> versionInList(std::string_view body);

// The shell command that copies the updater out of the main application's bundle. Nothing when it would not
// fit the 512 bytes that it may take with its terminator.
[[nodiscard]] std::optional<std::string> copyUpdaterCommand(std::string_view bundlePath);

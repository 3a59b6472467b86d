#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/property_list.h"

// Pure functions for the decisions of the launch. Thread-safe.

// Returns whether the desktop's "AppleInterfaceStyle" (nullopt if not set) selects the dark appearance: the
// text "dark", ignoring case.
[[nodiscard]] bool isDarkAppearance(const std::optional<platform::PropertyList>& interfaceStyle);

// Returns the path of the main application's bundle: the path of the agent's bundle without the first
// "/Contents/Resources/TovalinTray.app". Returns nullopt if the agent is not in such a place.
[[nodiscard]] std::optional<std::string> mainApplicationBundlePath(std::string_view agentBundlePath);

// Returns the shell command that shows the update notice through the notification helper. Returns nullopt if
// the command with its terminator exceeds 1024 bytes, that is, if the bundle's path exceeds 404 bytes.
[[nodiscard]] std::optional<std::string> updateNoticeCommand(std::string_view bundlePath);

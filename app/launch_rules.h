#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/property_list.h"

// The decisions of the launch, as functions of what they decide on. Any thread.

// Whether the desktop's "AppleInterfaceStyle" (nothing when it isn't set) means the dark appearance: a string
// that reads "dark" without regard to case.
[[nodiscard]] bool isDarkAppearance(const std::optional<platform::PropertyList>& interfaceStyle);

// The bundle of the main application, from the path of the agent's own bundle inside it: the path without its
// first "/Contents/Resources/TovalinTray.app". Nothing when the agent does not stand in such a place.
[[nodiscard]] std::optional<std::string> mainApplicationBundlePath(std::string_view agentBundlePath);

// The shell command that has the notification helper tell of an update. Nothing when it would not fit the
// 1024 bytes that a command may take with its terminator, which leaves 404 for the bundle's path.
[[nodiscard]] std::optional<std::string> updateNoticeCommand(std::string_view bundlePath);

#pragma once

// Commands that more than one concern runs through the shell.

inline constexpr const char* killNotificationHelperCommand = "killall tovalinnotification";
inline constexpr const char* unloadLaunchAgentCommand =
    "launchctl unload -F /Library/LaunchAgents/com.kesmoor.tovalintrayagent.plist";

#pragma once

// Commands that more than one concern runs through the shell. Frozen: doc/compatibility.md.

inline constexpr const char* killNotificationHelperCommand = "killall tovalinnotification";
inline constexpr const char* unloadLaunchAgentCommand =
    "launchctl unload -F /Library/LaunchAgents/com.kesmoor.tovalintrayagent.plist";

#pragma once

// Shell commands used in several modules. Frozen: doc/compatibility.md.

inline constexpr const char* killNotificationHelperCommand = "killall tovalinnotification";
inline constexpr const char* unloadLaunchAgentCommand =
    "launchctl unload -F /Library/LaunchAgents/com.kesmoor.tovalintrayagent.plist";

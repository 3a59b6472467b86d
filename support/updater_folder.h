#pragma once

inline constexpr const char* updaterFolder = "/tmp/tovalinupdate.app";  // doc/compatibility.md

// Makes the folder that the updater is copied to, in a place where everybody may make files, so that nobody
// else has put anything into it. Also true when this user's own stands there, which nobody else may write.
// False, and a line in the system log, when it is somebody else's or no folder, since the copy would follow
// links in it, or when it can't be made. Any thread.
[[nodiscard]] bool claimUpdaterFolder();

// Removes the folder where nothing was copied into it. Any thread.
void dropEmptyUpdaterFolder();

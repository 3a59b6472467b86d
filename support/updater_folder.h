#pragma once

inline constexpr const char* updaterFolder = "/tmp/tovalinupdate.app";  // frozen: doc/compatibility.md

// Creates the folder that the updater is copied to. /tmp is writable for all users, so the folder must not
// contain another user's files. Returns true if it was created, or if it already exists, belongs to this user
// and is writable for this user only. Otherwise writes an error to the system log and returns false, because
// the copy would follow another user's symbolic links. Thread-safe.
[[nodiscard]] bool claimUpdaterFolder();

// Removes the folder if it is empty. Thread-safe.
void dropEmptyUpdaterFolder();

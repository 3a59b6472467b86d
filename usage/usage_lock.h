#pragma once

#include <string>

#include "platform/file_descriptor.h"

// Locks the usage files in `folder` against other writers in this and other processes. The lock is released
// with the returned descriptor. It is held on a separate file that no other user can open; a usage file
// itself could be locked by anyone who opened it before it was made private.
//
// Waits up to 1 s. Returns an invalid descriptor and sets errno on failure: EWOULDBLOCK on timeout, otherwise
// the reason why the lock file cannot be used. Thread-safe.
[[nodiscard]] platform::FileDescriptor lockUsageFiles(const std::string& folder);

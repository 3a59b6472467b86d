#pragma once

#include <string>

#include "platform/file_descriptor.h"

// Locks the usage files in `folder` against other writers, in this process and others. The lock ends with the
// returned descriptor. It is a file of its own that no other user can open: a lock on a usage file could be
// held by anyone who opened that for reading before it was made private.
//
// Waits up to 1 s for the writer that holds it. Not valid on failure, with errno set: EWOULDBLOCK at the end
// of that time, else why there is no lock file. Any thread.
[[nodiscard]] platform::FileDescriptor lockUsageFiles(const std::string& folder);

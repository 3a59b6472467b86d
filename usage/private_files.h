#pragma once

#include <string>

#include "platform/file_descriptor.h"

// Usage data is for its user alone. Any thread; nothing is reported and nothing is thrown.

// Takes all access of other users from an open file or folder. Only where it is this user's own.
void makePrivate(const platform::FileDescriptor& file);

// Does that for the folder at `path` and for the usage files, the identity and the server's option in it.
// Follows no link.
void makeFolderPrivate(const std::string& path);

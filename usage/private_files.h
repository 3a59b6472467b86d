#pragma once

#include <string>

#include "platform/file_descriptor.h"

// Restricts access to usage data to its user. Reports no errors and throws nothing. Thread-safe.

// Removes all permissions of group and others from an open regular file or folder if it belongs to this user.
void makePrivate(const platform::FileDescriptor& file);

// Does the same for the folder at `path` and for the usage files, the identity file and the server option
// file in it. Follows no symbolic links.
void makeFolderPrivate(const std::string& path);

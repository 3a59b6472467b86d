#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <functional>

// Replaces functions of the C and C++ libraries, so that a case can make them fail.
namespace failing_parts {

// Called instead of read(2) unless empty.
extern std::function<ssize_t(int descriptor, void* bytes, std::size_t size)> insteadOfRead;

// Called instead of open(2), mkdir(2), fstat(2) and lstat(2) unless empty.
extern std::function<int(const char* path, int flags, mode_t mode)> insteadOfOpen;
extern std::function<int(const char* path, mode_t mode)> insteadOfMkdir;
extern std::function<int(int descriptor, struct stat* status)> insteadOfFstat;
extern std::function<int(const char* path, struct stat* status)> insteadOfLstat;

// If true, nothrow operator new[] returns null.
extern bool memoryIsShort;

// Restores all functions.
void restore();

}  // namespace failing_parts

#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <functional>

// Parts of the C and C++ libraries that a case can have fail: this program's own stand before the libraries'.
namespace failing_parts {

// What a read of at most `size` bytes gives instead of what the file holds; nothing: what it holds.
extern std::function<ssize_t(int descriptor, void* bytes, std::size_t size)> insteadOfRead;

// What becomes of the opening of a file, the making of a folder, and of asking for a size, instead; nothing:
// what the system does.
extern std::function<int(const char* path, int flags, mode_t mode)> insteadOfOpen;
extern std::function<int(const char* path, mode_t mode)> insteadOfMkdir;
extern std::function<int(int descriptor, struct stat* status)> insteadOfFstat;
extern std::function<int(const char* path, struct stat* status)> insteadOfLstat;

// Whether asking for memory that may be refused is refused.
extern bool memoryIsShort;

// Nothing fails any longer.
void mend();

}  // namespace failing_parts

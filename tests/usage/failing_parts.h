#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>

// Parts of the C and C++ libraries that a case can have fail: this program's own stand before the libraries'.
namespace failing_parts {

// What a read of at most `size` bytes gives instead of what the file holds; nothing: what it holds.
extern std::function<ssize_t(int descriptor, void* bytes, std::size_t size)> insteadOfRead;

// Whether asking for memory that may be refused is refused.
extern bool memoryIsShort;

}  // namespace failing_parts

#include "tests/usage/failing_parts.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <new>

namespace failing_parts {

std::function<ssize_t(int, void*, std::size_t)> insteadOfRead;
bool memoryIsShort = false;

}  // namespace failing_parts

// Every read of the tree's own libraries is led here by the linker.
extern "C" ssize_t readOfTheTest(int descriptor, void* bytes, std::size_t size) __asm__("__wrap_read");

ssize_t readOfTheTest(int descriptor, void* bytes, std::size_t size) {
  if (failing_parts::insteadOfRead) return failing_parts::insteadOfRead(descriptor, bytes, size);
  return ::syscall(SYS_read, descriptor, bytes, size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return failing_parts::memoryIsShort ? nullptr : ::operator new[](size);
}

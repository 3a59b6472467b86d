#include "tests/usage/failing_parts.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <new>

namespace failing_parts {

std::function<ssize_t(int, void*, std::size_t)> insteadOfRead;
std::function<int(const char*, int, mode_t)> insteadOfOpen;
std::function<int(const char*, mode_t)> insteadOfMkdir;
std::function<int(int, struct stat*)> insteadOfFstat;
std::function<int(const char*, struct stat*)> insteadOfLstat;
bool memoryIsShort = false;

void restore() {
  insteadOfRead = nullptr;
  insteadOfOpen = nullptr;
  insteadOfMkdir = nullptr;
  insteadOfFstat = nullptr;
  insteadOfLstat = nullptr;
  memoryIsShort = false;
}

}  // namespace failing_parts

// The linker option --wrap redirects each call from this project's libraries.
extern "C" ssize_t readOfTheTest(int descriptor, void* bytes, std::size_t size) __asm__("__wrap_read");

ssize_t readOfTheTest(int descriptor, void* bytes, std::size_t size) {
  if (failing_parts::insteadOfRead) return failing_parts::insteadOfRead(descriptor, bytes, size);
  return ::syscall(SYS_read, descriptor, bytes, size);
}

extern "C" int openOfTheTest(const char* path, int flags, mode_t mode) __asm__("__wrap_open");

int openOfTheTest(const char* path, int flags, mode_t mode) {
  if (failing_parts::insteadOfOpen) return failing_parts::insteadOfOpen(path, flags, mode);
  return static_cast<int>(::syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

extern "C" int mkdirOfTheTest(const char* path, mode_t mode) __asm__("__wrap_mkdir");

int mkdirOfTheTest(const char* path, mode_t mode) {
  if (failing_parts::insteadOfMkdir) return failing_parts::insteadOfMkdir(path, mode);
  return ::mkdirat(AT_FDCWD, path, mode);
}

extern "C" int fstatOfTheTest(int descriptor, struct stat* status) __asm__("__wrap_fstat");

int fstatOfTheTest(int descriptor, struct stat* status) {
  if (failing_parts::insteadOfFstat) return failing_parts::insteadOfFstat(descriptor, status);
  return ::fstatat(descriptor, "", status, AT_EMPTY_PATH);
}

extern "C" int lstatOfTheTest(const char* path, struct stat* status) __asm__("__wrap_lstat");

int lstatOfTheTest(const char* path, struct stat* status) {
  if (failing_parts::insteadOfLstat) return failing_parts::insteadOfLstat(path, status);
  return ::fstatat(AT_FDCWD, path, status, AT_SYMLINK_NOFOLLOW);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return failing_parts::memoryIsShort ? nullptr : ::operator new[](size);
}

// A library for LD_PRELOAD that makes one call of the agent's own code fail, as described in fault_report.h.
// Calls made by Qt and inside the C library succeed; calls that the C++ library makes on behalf of the
// agent's code count as the agent's.

#include <curl/curl.h>
#include <dirent.h>
#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <link.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string_view>

#include "tests/faults/fault_report.h"

extern "C" void* __libc_malloc(std::size_t size);                     // NOLINT(bugprone-reserved-identifier)
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);  // NOLINT(bugprone-reserved-identifier)

namespace {

using faults::indexOf;

constexpr std::size_t kLargeBuffer = std::size_t{64} * 1024;

struct Order {
  faults::Report* report = nullptr;  // null: no call is counted and none fails
  std::size_t call = faults::callNames.size();
  std::uint64_t which = 0;
  int error = 0;
};
Order order;
thread_local bool isLooking = false;

enum class Owner { Agent, CppLibrary, Other };

Owner ownerOf(void* address) {
  dl_find_object object{};
  if (_dl_find_object(address, &object) != 0 || object.dlfo_link_map->l_name == nullptr) return Owner::Other;
  const std::string_view name = object.dlfo_link_map->l_name;
  if (name.empty()) return Owner::Agent;
  return name.find("libstdc++.so") != std::string_view::npos ? Owner::CppLibrary : Owner::Other;
}

// std::filesystem crashes when an allocation fails, also on behalf of its callers.
bool isInFilePaths(void* frame) {
  Dl_info symbol{};
  return ::dladdr(frame, &symbol) != 0 && symbol.dli_sname != nullptr &&
         std::strstr(symbol.dli_sname, "10filesystem") != nullptr;
}

// Returns the nearest frame above this library and the C++ library if it is the agent's, else nullptr.
void* agentFrameAbove(bool throughFilePaths) {
  std::array<void*, 24> frames{};
  const std::span found(frames.data(), static_cast<std::size_t>(::backtrace(frames.data(), frames.size())));
  bool inCppLibrary = false;
  for (void* frame : found) {
    const Owner owner = ownerOf(frame);
    if (owner == Owner::Agent) return frame;
    if (owner == Owner::Other && inCppLibrary) return nullptr;
    inCppLibrary = owner == Owner::CppLibrary;
    if (inCppLibrary && !throughFilePaths && isInFilePaths(frame)) return nullptr;
  }
  return nullptr;
}

void* agentFrame(void* caller, bool throughFilePaths) {
  switch (ownerOf(caller)) {
    case Owner::Agent:
      return caller;
    case Owner::CppLibrary:
      return agentFrameAbove(throughFilePaths);
    case Owner::Other:
      break;
  }
  return nullptr;
}

std::uint64_t offsetInProgram(void* address) {
  dl_find_object object{};
  if (_dl_find_object(address, &object) != 0) return 0;
  return reinterpret_cast<std::uintptr_t>(address) - object.dlfo_link_map->l_addr;
}

// Returns the errno with which this call is to fail; 0 to let it succeed.
int faultOf(std::size_t call, void* caller) {
  if (order.report == nullptr || order.report->isOpen == 0 || isLooking) return 0;
  isLooking = true;
  void* const frame = agentFrame(caller, call != indexOf("small malloc"));
  isLooking = false;
  if (frame == nullptr) return 0;
  const std::uint64_t number = ++order.report->counts[call];
  if (call != order.call || number != order.which) return 0;
  order.report->failed = 1;
  order.report->place = offsetInProgram(frame);
  return order.error;
}

template <typename Function>
Function* next(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

bool isAgent() {
  std::array<char, 4096> path{};
  const ssize_t length = ::syscall(SYS_readlinkat, AT_FDCWD, "/proc/self/exe", path.data(), path.size());
  return length > 0 &&
         std::string_view(path.data(), static_cast<std::size_t>(length)).ends_with("/TovalinTray");
}

// A full disk still accepts the start of a file, which fits into its first block. Calls the kernel directly,
// so that this check is not itself counted.
bool isTakenInPart(int file) {
  struct stat status {};
  return ::syscall(SYS_newfstatat, file, "", &status, AT_EMPTY_PATH) == 0 && S_ISREG(status.st_mode) &&
         status.st_size > 0;
}

faults::Report* openReport(const char* path) {
  const long file = ::syscall(SYS_openat, AT_FDCWD, path, O_RDWR | O_CLOEXEC);
  if (file < 0) return nullptr;
  void* const memory =
      ::mmap(nullptr, sizeof(faults::Report), PROT_READ | PROT_WRITE, MAP_SHARED, static_cast<int>(file), 0);
  ::syscall(SYS_close, file);
  return memory == MAP_FAILED ? nullptr : static_cast<faults::Report*>(memory);
}

__attribute__((constructor)) void takeOrder() {
  const char* text = std::getenv("TOVALIN_FAULT");
  const char* path = std::getenv("TOVALIN_FAULT_REPORT");
  if (text == nullptr || path == nullptr || !isAgent()) return;
  const std::string_view words = text;
  const std::size_t second = words.rfind(' '), first = words.rfind(' ', second - 1);
  order.call = indexOf(words.substr(0, first));
  order.which = std::strtoull(text + first, nullptr, 10);
  order.error = static_cast<int>(std::strtol(text + second, nullptr, 10));
  std::array<void*, 2> warmUp{};
  ::backtrace(warmUp.data(), warmUp.size());
  // The agent's child processes run without faults.
  ::unsetenv("LD_PRELOAD");
  order.report = openReport(path);
}

}  // namespace

// Defines one failing call, which replaces the C library's function `name`. `failure` may use `error`.
// NOLINTBEGIN(bugprone-macro-parentheses)
#define FAILING(name, result, failure, parameters, ...)                                       \
  extern "C" result failing_##name parameters __asm__(#name);                                 \
  result failing_##name parameters {                                                          \
    static const auto original = next<result parameters>(#name);                              \
    static_assert(indexOf(#name) < faults::callNames.size());                                 \
    if (const int error = faultOf(indexOf(#name), __builtin_return_address(0)); error != 0) { \
      errno = error;                                                                          \
      return failure;                                                                         \
    }                                                                                         \
    return original(__VA_ARGS__);                                                             \
  }
// NOLINTEND(bugprone-macro-parentheses)

FAILING(open, int, -1, (const char* path, int flags, mode_t mode), path, flags, mode)
FAILING(openat, int, -1, (int folder, const char* path, int flags, mode_t mode), folder, path, flags, mode)
FAILING(fopen64, FILE*, nullptr, (const char* path, const char* mode), path, mode)
FAILING(read, ssize_t, -1, (int file, void* bytes, std::size_t size), file, bytes, size)
FAILING(lseek, off_t, -1, (int file, off_t offset, int origin), file, offset, origin)
FAILING(stat, int, -1, (const char* path, struct stat* status), path, status)
FAILING(lstat, int, -1, (const char* path, struct stat* status), path, status)
FAILING(fstat, int, -1, (int file, struct stat* status), file, status)
FAILING(statx, int, -1, (int folder, const char* path, int flags, unsigned mask, struct statx* status),
        folder, path, flags, mask, status)
FAILING(readlink, ssize_t, -1, (const char* path, char* text, std::size_t size), path, text, size)
FAILING(fdopendir, DIR*, nullptr, (int folder), folder)
FAILING(readdir, dirent*, nullptr, (DIR * folder), folder)
FAILING(mkdir, int, -1, (const char* path, mode_t mode), path, mode)
FAILING(mkfifo, int, -1, (const char* path, mode_t mode), path, mode)
FAILING(chmod, int, -1, (const char* path, mode_t mode), path, mode)
FAILING(fchmod, int, -1, (int file, mode_t mode), file, mode)
FAILING(sendfile, ssize_t, -1, (int out, int in, off_t* offset, std::size_t count), out, in, offset, count)
FAILING(unlink, int, -1, (const char* path), path)
FAILING(unlinkat, int, -1, (int folder, const char* path, int flags), folder, path, flags)
FAILING(remove, int, -1, (const char* path), path)
FAILING(rmdir, int, -1, (const char* path), path)
FAILING(realpath, char*, nullptr, (const char* path, char* found), path, found)
FAILING(ftruncate, int, -1, (int file, off_t length), file, length)
FAILING(flock, int, -1, (int file, int operation), file, operation)
FAILING(select, int, -1, (int count, fd_set* readable, fd_set* writable, fd_set* exceptional, timeval* wait),
        count, readable, writable, exceptional, wait)
FAILING(poll, int, -1, (pollfd * files, nfds_t count, int wait), files, count, wait)
FAILING(pipe2, int, -1, (int* ends, int flags), ends, flags)
FAILING(socket, int, -1, (int domain, int type, int protocol), domain, type, protocol)
FAILING(socketpair, int, -1, (int domain, int type, int protocol, int* ends), domain, type, protocol, ends)
FAILING(connect, int, -1, (int file, const sockaddr* address, socklen_t length), file, address, length)
FAILING(send, ssize_t, -1, (int file, const void* bytes, std::size_t size, int flags), file, bytes, size,
        flags)
FAILING(ioctl, int, -1, (int file, unsigned long request, void* argument), file, request, argument)
FAILING(posix_spawn, int, error,
        (pid_t * child, const char* path, const posix_spawn_file_actions_t* actions,
         const posix_spawnattr_t* attributes, char* const* arguments, char* const* environment),
        child, path, actions, attributes, arguments, environment)
FAILING(execv, int, -1, (const char* path, char* const* arguments), path, arguments)
FAILING(pthread_create, int, error,
        (pthread_t * thread, const pthread_attr_t* attributes, void* (*body)(void*), void* argument), thread,
        attributes, body, argument)
FAILING(inotify_init1, int, -1, (int flags), flags)
FAILING(inotify_add_watch, int, -1, (int queue, const char* path, std::uint32_t mask), queue, path, mask)
FAILING(inotify_rm_watch, int, -1, (int queue, int watch), queue, watch)
FAILING(writev, ssize_t, -1, (int file, const iovec* pieces, int count), file, pieces, count)
FAILING(statvfs, int, -1, (const char* path, struct statvfs* status), path, status)
FAILING(close_range, int, -1, (unsigned first, unsigned last, int flags), first, last, flags)
FAILING(sigaction, int, -1, (int number, const struct sigaction* action, struct sigaction* before), number,
        action, before)
FAILING(curl_global_init, CURLcode, CURLE_FAILED_INIT, (long flags), flags)
FAILING(curl_easy_init, CURL*, nullptr, (), )
FAILING(curl_multi_init, CURLM*, nullptr, (), )
FAILING(curl_multi_add_handle, CURLMcode, CURLM_OUT_OF_MEMORY, (CURLM * loop, CURL* handle), loop, handle)
FAILING(curl_multi_perform, CURLMcode, CURLM_OUT_OF_MEMORY, (CURLM * loop, int* running), loop, running)
FAILING(curl_multi_poll, CURLMcode, CURLM_OUT_OF_MEMORY,
        (CURLM * loop, curl_waitfd* extra, unsigned count, int wait, int* ready), loop, extra, count, wait,
        ready)
FAILING(curl_slist_append, curl_slist*, nullptr, (curl_slist * list, const char* text), list, text)

extern "C" ssize_t failingWrite(int file, const void* bytes, std::size_t size) __asm__("write");
ssize_t failingWrite(int file, const void* bytes, std::size_t size) {
  static const auto original = next<ssize_t(int, const void*, std::size_t)>("write");
  if (const int error = faultOf(indexOf("write"), __builtin_return_address(0)); error != 0) {
    errno = error;
    return -1;
  }
  const bool isInPart =
      size > 1 && isTakenInPart(file) && faultOf(indexOf("write in part"), __builtin_return_address(0)) != 0;
  return original(file, bytes, isInPart ? size / 2 : size);
}

// close(2) releases the descriptor even if it reports an error.
extern "C" int failingClose(int file) __asm__("close");
int failingClose(int file) {
  static const auto original = next<int(int)>("close");
  const int error = faultOf(indexOf("close"), __builtin_return_address(0));
  const int result = original(file);
  if (error == 0) return result;
  errno = error;
  return -1;
}

// ECHILD means that the child has already been reaped.
extern "C" pid_t failingWaitpid(pid_t child, int* status, int options) __asm__("waitpid");
pid_t failingWaitpid(pid_t child, int* status, int options) {
  static const auto original = next<pid_t(pid_t, int*, int)>("waitpid");
  const int error = faultOf(indexOf("waitpid"), __builtin_return_address(0));
  if (error == 0) return original(child, status, options);
  if (error == ECHILD) original(child, nullptr, options);
  errno = error;
  return -1;
}

extern "C" long failingSyscall(long number, long a, long b, long c, long d, long e,
                               long f) __asm__("syscall");
long failingSyscall(long number, long a, long b, long c, long d, long e, long f) {
  static const auto original = next<long(long, long, long, long, long, long, long)>("syscall");
  if (number == SYS_pidfd_open) {
    if (const int error = faultOf(indexOf("pidfd_open"), __builtin_return_address(0)); error != 0) {
      errno = error;
      return -1;
    }
  }
  return original(number, a, b, c, d, e, f);
}

extern "C" void* failingMalloc(std::size_t size) __asm__("malloc");
void* failingMalloc(std::size_t size) {
  constexpr std::size_t small = indexOf("small malloc");
  const std::size_t call = size >= kLargeBuffer ? indexOf("malloc") : small;
  // Checked first, because there are very many: look up the caller only if one of them is to fail or all are
  // counted.
  const bool counts = order.call == small || order.call == faults::callNames.size();
  if (call == small && !counts) return __libc_malloc(size);
  if (const int error = faultOf(call, __builtin_return_address(0)); error != 0) {
    errno = error;
    return nullptr;
  }
  return __libc_malloc(size);
}

// Without dlsym(3), which itself allocates memory.
extern "C" void* failingCalloc(std::size_t count, std::size_t size) __asm__("calloc");
void* failingCalloc(std::size_t count, std::size_t size) {
  if (const int error = faultOf(indexOf("calloc"), __builtin_return_address(0)); error != 0) {
    errno = error;
    return nullptr;
  }
  return __libc_calloc(count, size);
}

// Shortens the agent's pauses of whole seconds, which would dominate the duration of the tests.
extern "C" int shortNanosleep(const timespec* wanted, timespec* left) __asm__("nanosleep");
int shortNanosleep(const timespec* wanted, timespec* left) {
  static const auto original = next<int(const timespec*, timespec*)>("nanosleep");
  const timespec shorter{0, 20'000'000};
  const bool isLong = order.report != nullptr && wanted->tv_sec >= 1;
  return original(isLong && ownerOf(__builtin_return_address(0)) == Owner::Agent ? &shorter : wanted, left);
}

#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

// The interface between the test and the library of failing calls. TOVALIN_FAULT holds the call, for example
// "read 3 5" (the third read fails with errno 5; "none 0 0" only counts). TOVALIN_FAULT_REPORT holds the path
// of a file that contains a Report.
namespace faults {

// The calls that can fail. "malloc" is an allocation of 64 KiB or more, "small malloc" of less. "write in
// part" is a write to the end of a file that stores only its first half, as on a disk that becomes full.
// clang-format off
inline constexpr std::array<std::string_view, 57> callNames = {
    "open", "openat", "fopen64", "read", "write",
    "close", "lseek", "stat", "lstat", "fstat",
    "statx", "readlink", "fdopendir", "readdir", "mkdir",
    "mkfifo", "chmod", "fchmod", "sendfile", "unlink",
    "unlinkat", "remove", "ftruncate", "flock", "select",
    "poll", "pipe2", "socket", "socketpair", "connect",
    "send", "ioctl", "pidfd_open", "posix_spawn", "waitpid",
    "pthread_create", "inotify_init1", "inotify_add_watch", "curl_global_init", "curl_easy_init",
    "curl_multi_init", "curl_multi_add_handle", "curl_multi_perform", "curl_multi_poll", "curl_slist_append",
    "malloc", "small malloc", "write in part", "inotify_rm_watch", "writev",
    "statvfs", "execv", "close_range", "sigaction", "calloc",
    "rmdir", "realpath"};
// clang-format on

struct Report {
  // Whether calls are counted and may fail.
  std::atomic<std::uint64_t> isOpen = 0;
  std::array<std::atomic<std::uint64_t>, callNames.size()> counts{};
  std::atomic<std::uint64_t> failed = 0;
  // Address of the failed call in the agent's program, for addr2line(1).
  std::atomic<std::uint64_t> place = 0;
};

// Returns the index of a name; the number of names if it is unknown.
constexpr std::size_t indexOf(std::string_view name) {
  std::size_t index = 0;
  while (index < callNames.size() && callNames[index] != name) ++index;
  return index;
}

}  // namespace faults

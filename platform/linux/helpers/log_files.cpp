#include "platform/linux/helpers/log_files.h"

#include <fcntl.h>
#include <fnmatch.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>
#include <tuple>
#include <vector>

#include "platform/linux/helpers/new_file.h"

namespace helpers {
namespace {

using platform::FileDescriptor;

// Bounds the argument list of the command that packs the files.
constexpr std::size_t maxFiles = 1000;

// Bounds the run time in shared folders, which any user can fill.
constexpr int maxEntries = 20'000;

struct Candidate {
  std::string name;
  timespec modified{};
};

bool isNewer(const Candidate& one, const Candidate& other) {
  return std::tie(one.modified.tv_sec, one.modified.tv_nsec) >
         std::tie(other.modified.tv_sec, other.modified.tv_nsec);
}

std::vector<std::string> namesIn(int folder, const std::string& pattern) {
  std::vector<std::string> names;
  std::error_code error;
  // Lists the folder through its descriptor: a path could lead to another folder than the one whose owner has
  // been checked.
  std::filesystem::directory_iterator entry("/proc/self/fd/" + std::to_string(folder), error);
  for (int read = 0; !error && entry != std::filesystem::directory_iterator() && read < maxEntries; ++read) {
    const std::string name = entry->path().filename();
    if (::fnmatch(pattern.c_str(), name.c_str(), FNM_PERIOD) == 0) names.push_back(name);
    entry.increment(error);
  }
  return names;
}

// State of one copyFiles call.
class Copying {
 public:
  Copying(const CopyFiles& request, const FileDescriptor& source, const FileDescriptor& target)
      : request_(request), source_(source), target_(target), remaining_(request.limit) {
    ::fstat(source_.get(), &folder_);
  }

  CopyResult run() {
    const std::vector<Candidate> candidates = newestFirst();
    for (std::size_t i = 0; i < candidates.size(); ++i) {
      if (i < wantedFiles() && copy(candidates[i].name)) {
        ++result_.copied;
      } else {
        ++result_.leftOut;
      }
    }
    return result_;
  }

 private:
  [[nodiscard]] std::size_t wantedFiles() const { return request_.name.empty() ? maxFiles : 1; }
  [[nodiscard]] const std::string& nameOfCopy(const std::string& name) const {
    return request_.name.empty() ? name : request_.name;
  }

  std::vector<Candidate> newestFirst() {
    std::vector<Candidate> candidates;
    for (std::string& name : namesIn(source_.get(), request_.pattern)) {
      struct stat status {};
      if (::fstatat(source_.get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
          isCopyAllowed(status, folder_, ::geteuid())) {
        candidates.push_back({std::move(name), status.st_mtim});
      } else {
        ++result_.leftOut;
      }
    }
    std::ranges::sort(candidates, isNewer);
    return candidates;
  }

  // O_NONBLOCK prevents a FIFO that has replaced the file, or a lease on it, from blocking the open.
  [[nodiscard]] FileDescriptor open(const std::string& name) const {
    return FileDescriptor(
        ::openat(source_.get(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  }

  // Checks the directory entry again after the open. If the entry was a second link to another file and has
  // been removed, that file has a link count of 1 and fstat alone would accept it.
  [[nodiscard]] bool isSameEntry(int file, const std::string& name, struct stat& status) const {
    struct stat entry {};
    return ::fstat(file, &status) == 0 &&
           ::fstatat(source_.get(), name.c_str(), &entry, AT_SYMLINK_NOFOLLOW) == 0 &&
           entry.st_dev == status.st_dev && entry.st_ino == status.st_ino &&
           isCopyAllowed(entry, folder_, ::geteuid());
  }

  bool copy(const std::string& name) {
    const FileDescriptor file = open(name);
    struct stat status {};
    if (!file.valid() || !isSameEntry(file.get(), name, status)) return false;
    if (status.st_size > remaining_ && request_.oversized == CopyFiles::Oversized::Skipped) return false;
    const off_t size = std::min<off_t>(status.st_size, remaining_);
    NewFile copied(target_.get(), nameOfCopy(name));
    if (!copied.valid() || !copyBytes(file.get(), status.st_size - size, size, copied)) {
      result_.error = errno;
      return false;
    }
    copied.keep();
    remaining_ -= size;
    return true;
  }

  // Copies at most the size at the time of the check if the file grows, and up to its end if it shrinks.
  static bool copyBytes(int file, off_t offset, off_t size, NewFile& copied) {
    std::array<char, 1 << 16> buffer{};
    while (size > 0) {
      const auto wanted = std::min(buffer.size(), static_cast<std::size_t>(size));
      const ssize_t count = ::pread(file, buffer.data(), wanted, offset);
      if (count == -1 && errno == EINTR) continue;
      if (count == -1) return false;
      if (count == 0) return true;
      if (!copied.write({buffer.data(), static_cast<std::size_t>(count)})) return false;
      offset += count;
      size -= count;
    }
    return true;
  }

  const CopyFiles& request_;
  const FileDescriptor& source_;
  const FileDescriptor& target_;
  off_t remaining_;
  struct stat folder_ {};
  CopyResult result_;
};

}  // namespace

bool isCopyAllowed(const struct stat& file, const struct stat& folder, uid_t user) {
  if (!S_ISREG(file.st_mode) || file.st_nlink != 1) return false;
  if (file.st_uid == user) return true;
  return folder.st_uid == 0 && (folder.st_mode & S_IWOTH) == 0;
}

CopyResult copyFiles(const CopyFiles& request) {
  const FileDescriptor source(::open(request.source.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!source.valid()) return {.error = errno};
  const FileDescriptor target = openOwnFolder(request.target);
  if (!target.valid()) return {.error = errno};
  return Copying(request, source, target).run();
}

}  // namespace helpers

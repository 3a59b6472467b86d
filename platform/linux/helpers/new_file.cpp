#include "platform/linux/helpers/new_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

namespace helpers {
namespace {

int recreate(int folder, const std::string& name) {
  ::unlinkat(folder, name.c_str(), 0);
  return ::openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                  S_IRUSR | S_IWUSR);
}

}  // namespace

platform::FileDescriptor openOwnFolder(const std::string& path) {
  platform::FileDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  struct stat status {};
  if (!folder.valid() || ::fstat(folder.get(), &status) != 0) return {};
  if (status.st_uid != ::geteuid()) {
    errno = EPERM;
    return {};
  }
  if (::fchmod(folder.get(), S_IRWXU) != 0) return {};
  return folder;
}

NewFile::NewFile(int folder, std::string name)
    : folder_(folder), name_(std::move(name)), file_(recreate(folder_, name_)) {}

NewFile::~NewFile() {
  if (valid() && !kept_) ::unlinkat(folder_, name_.c_str(), 0);
}

bool NewFile::write(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(file_.get(), bytes.data(), bytes.size());
    if (count == -1 && errno == EINTR) continue;
    if (count == -1) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

bool NewFile::keepAs(const std::string& name) {
  kept_ = ::renameat(folder_, name_.c_str(), folder_, name.c_str()) == 0;
  return kept_;
}

}  // namespace helpers

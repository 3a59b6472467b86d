#include "platform/spawn_descriptors.h"

#include <dirent.h>
#include <fcntl.h>

#include <cstdlib>
#include <memory>

namespace platform {
namespace {

struct CloseFolder {
  void operator()(DIR* folder) const { ::closedir(folder); }
};

}  // namespace

// There is no file action for a range of descriptors. So all that are open are marked close-on-exec in this
// process, which no child of it inherits then.
void closeDescriptorsFrom(int first, posix_spawn_file_actions_t& actions) {
  static_cast<void>(actions);
  const std::unique_ptr<DIR, CloseFolder> folder(::opendir("/dev/fd"));
  if (folder == nullptr) return;
  while (const dirent* entry = ::readdir(folder.get())) {
    const int descriptor = std::atoi(entry->d_name);
    if (descriptor >= first) ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
  }
}

}  // namespace platform

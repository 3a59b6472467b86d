#include "platform/linux/processes/runtime_folder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "platform/linux/processes/private_folder.h"

namespace platform {
namespace {

constexpr const char* variable = "XDG_RUNTIME_DIR";

// A path at which no user, not even root, can create a folder.
constexpr const char* nowhere = "/proc/nowhere";

// The same check as in Qt, which also refuses a link to a folder.
bool isUsable(const char* folder) {
  struct stat status {};
  return folder != nullptr && ::lstat(folder, &status) == 0 && S_ISDIR(status.st_mode) &&
         status.st_uid == ::geteuid() && (status.st_mode & 0777) == S_IRWXU;
}

}  // namespace

ToolkitsRuntimeFolder::ToolkitsRuntimeFolder() {
  if (isUsable(std::getenv(variable))) return;
  const auto own = privateFolder();
  const bool hasOwn = own && isUsable(own->c_str());
  replace(variable, hasOwn ? own->c_str() : nowhere);
  if (!hasOwn) replace("TMPDIR", nowhere);
}

void ToolkitsRuntimeFolder::replace(const char* name, const char* value) {
  const char* usersOwn = std::getenv(name);
  usersOwn_.push_back({name, usersOwn == nullptr ? std::nullopt : std::optional<std::string>(usersOwn)});
  ::setenv(name, value, 1);
}

ToolkitsRuntimeFolder::~ToolkitsRuntimeFolder() {
  for (const Variable& own : usersOwn_) {
    if (own.value) {
      ::setenv(own.name, own.value->c_str(), 1);
    } else {
      ::unsetenv(own.name);
    }
  }
}

}  // namespace platform

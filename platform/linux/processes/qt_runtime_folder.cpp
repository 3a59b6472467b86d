#include "platform/linux/processes/qt_runtime_folder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "platform/linux/processes/nowhere.h"
#include "platform/linux/processes/private_folder.h"

namespace platform {
namespace {

constexpr const char* variable = "XDG_RUNTIME_DIR";

// The same check as in Qt, which also refuses a link to a folder.
bool isUsable(const char* folder) {
  struct stat status {};
  return folder != nullptr && ::lstat(folder, &status) == 0 && S_ISDIR(status.st_mode) &&
         status.st_uid == ::geteuid() && (status.st_mode & 0777) == S_IRWXU;
}

}  // namespace

QtRuntimeFolder::QtRuntimeFolder() {
  if (isUsable(std::getenv(variable))) return;
  const auto folder = privateFolder();
  const bool hasOwn = folder && isUsable(folder->c_str());
  replace(variable, hasOwn ? folder->c_str() : nowhere);
  if (!hasOwn) replace("TMPDIR", nowhere);
}

void QtRuntimeFolder::replace(const char* name, const char* value) {
  const char* original = std::getenv(name);
  replaced_.push_back({name, original == nullptr ? std::nullopt : std::optional<std::string>(original)});
  ::setenv(name, value, 1);
}

QtRuntimeFolder::~QtRuntimeFolder() {
  for (const Variable& replaced : replaced_) {
    if (replaced.value) {
      ::setenv(replaced.name, replaced.value->c_str(), 1);
    } else {
      ::unsetenv(replaced.name);
    }
  }
}

}  // namespace platform

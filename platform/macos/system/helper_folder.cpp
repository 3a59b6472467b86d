#include "platform/helper_folder.h"

namespace platform {

// launchctl, open and osascript are the system's own here.
std::vector<std::string> helperFolders() {
  return {};
}

void installHelpers() {}

void removeHelpers() {}

}  // namespace platform

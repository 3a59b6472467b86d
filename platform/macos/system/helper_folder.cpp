#include "platform/helper_folder.h"

namespace platform {

// No helper programs: macOS provides launchctl, open and osascript.
std::vector<std::string> helperFolders() {
  return {};
}

void installHelpers() {}

void removeHelpers() {}

}  // namespace platform

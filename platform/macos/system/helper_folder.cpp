#include "platform/helper_folder.h"

namespace platform {

// launchctl, open and osascript are the system's own here.
std::optional<std::string> helperFolder() {
  return std::nullopt;
}

void installHelpers() {}

void removeHelpers() {}

}  // namespace platform

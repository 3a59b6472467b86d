#include "platform/workspace.h"

#include "platform/linux/child_run.h"
#include "platform/linux/private_folder.h"

namespace platform {

Workspace& Workspace::sharedWorkspace() {
  static Workspace workspace;
  return workspace;
}

// The helper hands the address to the desktop and does not wait for the browser.
void Workspace::openURL(const std::string& url) {
  if (const auto helpers = helperFolder()) runAndWait(*helpers + "/open", {"open", url});
}

}  // namespace platform

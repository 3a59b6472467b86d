#include "platform/workspace.h"

#include "platform/bundle.h"
#include "platform/linux/child_run.h"
#include "platform/linux/private_folder.h"

namespace platform {
namespace {

bool wasRun(const std::string& folder, const std::string& url) {
  return runAndWait(folder + "/open", {"open", url}) != -1;
}

}  // namespace

Workspace& Workspace::sharedWorkspace() {
  static Workspace workspace;
  return workspace;
}

// The helper hands the address to the desktop and does not wait for the browser. Its copy outlives the
// bundle; where there is none, the bundle's own does.
void Workspace::openURL(const std::string& url) {
  const auto helpers = helperFolder();
  if (helpers && wasRun(*helpers, url)) return;
  if (const auto bundle = Bundle::mainBundle()) wasRun(bundle->bundlePath() + "/Contents/Helpers", url);
}

}  // namespace platform

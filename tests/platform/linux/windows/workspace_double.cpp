#include "tests/platform/linux/windows/workspace_double.h"

#include "platform/workspace.h"

std::vector<std::string>& openedAddresses() {
  static std::vector<std::string> addresses;
  return addresses;
}

namespace platform {

Workspace& Workspace::sharedWorkspace() {
  static Workspace workspace;
  return workspace;
}

void Workspace::openURL(const std::string& url) {
  openedAddresses().push_back(url);
}

}  // namespace platform

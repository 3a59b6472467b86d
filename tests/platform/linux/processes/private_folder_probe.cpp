#include <string_view>

#include "platform/helper_folder.h"
#include "platform/shell.h"
#include "platform/workspace.h"

// private_folder_probe install|remove|open|collect: installs or removes the helpers of its bundle, opens a
// page, or runs a helper through the shell.
int main(int argc, char** argv) {
  const std::string_view task = argc > 1 ? argv[1] : "";
  if (task == "install") {
    platform::installHelpers();
  } else if (task == "remove") {
    platform::removeHelpers();
  } else if (task == "open") {
    platform::Workspace::sharedWorkspace().openURL("http://a");
  } else if (task == "collect") {
    return platform::system("collectlogs >/tmp/output");
  } else {
    return 2;
  }
}

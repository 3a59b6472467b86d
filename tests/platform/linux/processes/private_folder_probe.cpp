#include <string_view>

#include "platform/helper_folder.h"
#include "platform/workspace.h"

// "install" or "remove": does so with the helper programs of its own bundle. "open": opens a page.
int main(int argc, char** argv) {
  const std::string_view task = argc > 1 ? argv[1] : "";
  if (task == "install") {
    platform::installHelpers();
  } else if (task == "remove") {
    platform::removeHelpers();
  } else if (task == "open") {
    platform::Workspace::sharedWorkspace().openURL("http://a");
  } else {
    return 2;
  }
}

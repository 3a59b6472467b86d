#pragma once

#include <string>

namespace platform {

// What the desktop does for its programs.
class Workspace {
 public:
  [[nodiscard]] static Workspace& sharedWorkspace();

  // Shows the page at `url` in the user's default browser. The address is handed on as it stands, as one
  // argument and through no shell; nobody learns whether a browser came up. Main thread.
  void openURL(const std::string& url);

 private:
  Workspace() = default;
};

}  // namespace platform

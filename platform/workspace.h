#pragma once

#include <string>

namespace platform {

// What the desktop does for its programs.
class Workspace {
 public:
  [[nodiscard]] static Workspace& sharedWorkspace();

  // Shows the page at the address that `text` is in the user's default browser. Only the address that the
  // text is read as (RFC 3986) is handed on, as one argument and through no shell; a text that is no whole
  // one opens nothing. Nobody learns whether a browser came up. Main thread.
  void openURL(const std::string& text);

 private:
  Workspace() = default;
};

}  // namespace platform

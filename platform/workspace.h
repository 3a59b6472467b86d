#pragma once

#include <string>

namespace platform {

// Services of the desktop. Main thread only.
class Workspace {
 public:
  [[nodiscard]] static Workspace& sharedWorkspace();

  // Opens the address `text` in the user's default browser. The text is parsed as an absolute URI (RFC 3986)
  // and passed on as one re-encoded argument, without a shell. Does nothing if it cannot be parsed. Errors of
  // the browser are not reported.
  void openURL(const std::string& text);

 private:
  Workspace() = default;
};

}  // namespace platform

#include "platform/search_path.h"

#include <cstdlib>

namespace platform {

// XDG Base Directory 0.8: $XDG_DATA_HOME if it is an absolute path, else $HOME/.local/share.
std::optional<std::string> applicationSupportDirectory() {
  const char* data = std::getenv("XDG_DATA_HOME");
  if (data != nullptr && data[0] == '/') return data;
  const char* home = std::getenv("HOME");
  if (home != nullptr && home[0] == '/') return std::string(home) + "/.local/share";
  return std::nullopt;
}

}  // namespace platform

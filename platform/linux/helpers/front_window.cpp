#include "platform/linux/helpers/front_window.h"

#include <algorithm>

namespace helpers {
namespace {

// A window without a known type is a normal one, as the Extended Window Manager Hints define it.
bool isApplicationWindow(const std::vector<std::string>& types) {
  const auto known = std::find_if(types.begin(), types.end(), [](const std::string& type) {
    return type.starts_with("_NET_WM_WINDOW_TYPE_");
  });
  return known == types.end() || *known == "_NET_WM_WINDOW_TYPE_NORMAL" ||
         *known == "_NET_WM_WINDOW_TYPE_DIALOG";
}

}  // namespace

std::optional<Window> frontWindow(const ScreenState& screen) {
  if (screen.active.window != 0 && screen.active.viewable) return screen.active.window;
  const auto top =
      std::find_if(screen.stacking.rbegin(), screen.stacking.rend(), [&](const ManagedWindow& it) {
        const bool here = it.desktop == screen.currentDesktop || it.desktop == onAllDesktops;
        return it.viewable && here && isApplicationWindow(it.types);
      });
  if (top == screen.stacking.rend()) return std::nullopt;
  return top->window;
}

}  // namespace helpers

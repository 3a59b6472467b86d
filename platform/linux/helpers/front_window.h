#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// Which window is in front, in the terms of the Extended Window Manager Hints.
namespace helpers {

using Window = std::uint32_t;  // 0 is none

inline constexpr std::uint32_t onAllDesktops = 0xFFFFFFFF;

// A window that the window manager takes care of.
struct ManagedWindow {
  Window window = 0;
  bool viewable = false;           // neither minimised nor put away by its program
  std::vector<std::string> types;  // _NET_WM_WINDOW_TYPE by name, most wanted first
  std::uint32_t desktop = 0;       // _NET_WM_DESKTOP
};

// What the screen shows at one moment.
struct ScreenState {
  ManagedWindow active;                 // _NET_ACTIVE_WINDOW; it may be gone
  std::uint32_t currentDesktop = 0;     // _NET_CURRENT_DESKTOP
  std::vector<ManagedWindow> stacking;  // _NET_CLIENT_LIST_STACKING, bottom to top
};

// The active window; when it is gone, the topmost one that people work in, which panels and the like are not.
[[nodiscard]] std::optional<Window> frontWindow(const ScreenState& screen);

}  // namespace helpers

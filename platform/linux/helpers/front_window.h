#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// Selection of the frontmost window, in the terms of the Extended Window Manager Hints. Thread-safe.
namespace helpers {

using Window = std::uint32_t;  // 0: none

inline constexpr std::uint32_t onAllDesktops = 0xFFFFFFFF;

// A window managed by the window manager.
struct ManagedWindow {
  Window window = 0;
  bool viewable = false;           // mapped: neither minimised nor withdrawn
  std::vector<std::string> types;  // names of _NET_WM_WINDOW_TYPE, preferred first
  std::uint32_t desktop = 0;       // _NET_WM_DESKTOP
};

// Snapshot of the screen.
struct ScreenState {
  ManagedWindow active;                 // _NET_ACTIVE_WINDOW; may be destroyed already
  std::uint32_t currentDesktop = 0;     // _NET_CURRENT_DESKTOP
  std::vector<ManagedWindow> stacking;  // _NET_CLIENT_LIST_STACKING, bottom to top
};

// Returns the active window if it is viewable, else the topmost viewable normal window or dialog on the
// current desktop. Returns nullopt if there is none.
[[nodiscard]] std::optional<Window> frontWindow(const ScreenState& screen);

}  // namespace helpers

#pragma once

#include <algorithm>
#include <array>
#include <string_view>

namespace platform {

// Where a status icon can be shown.
enum class TrayPlace { Nowhere, Bus, Screen };

// Whether a StatusNotifierItem host is registered on the session bus; Unknown while the watcher is asked.
enum class BusHost { Unknown, Absent, Present };

// Where the icon belongs from now on: with a host on the bus, else in a tray of the X screen. Where neither
// is there, or not yet known, the icon stays where it was, as that panel may come back. Plain function.
[[nodiscard]] constexpr TrayPlace placeFor(TrayPlace current, BusHost host, bool trayOnScreen) {
  if (host == BusHost::Present) return TrayPlace::Bus;
  if (host == BusHost::Absent && trayOnScreen) return TrayPlace::Screen;
  return current;
}

// Whether the panels whose watcher is this process paint symbolic icons in the colour of their text. Others,
// like those of LXQt and MATE and waybar, paint them dark on whatever they have. Plain function.
[[nodiscard]] constexpr bool recoloursSymbols(std::string_view watcherProcess) {
  constexpr std::array<std::string_view, 5> known{"gnome-shell", "kded5", "kded6", "plasmashell",
                                                  "xfce4-panel"};
  // A plugin of xfce4-panel in a process of its own.
  return std::ranges::find(known, watcherProcess) != known.end() || watcherProcess.starts_with("panel-");
}

}  // namespace platform

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

// Where a panel finds symbolic icons that it paints in the colour of its text: in a folder that the item
// names, or in the icon themes of the system only. Nowhere: it paints them dark on whatever it has, like the
// panels of LXQt and MATE and waybar.
enum class SymbolSource { Nowhere, Themes, Folder };

// For the panels whose watcher is this process. Plain function.
[[nodiscard]] constexpr SymbolSource symbolSourceOf(std::string_view watcherProcess) {
  // Plasma paints an icon from an item's folder in the colour of the programs, not of the panel.
  constexpr std::array<std::string_view, 3> plasma{"kded5", "kded6", "plasmashell"};
  constexpr std::array<std::string_view, 2> others{"gnome-shell", "xfce4-panel"};
  if (std::ranges::find(plasma, watcherProcess) != plasma.end()) return SymbolSource::Themes;
  // A plugin of xfce4-panel in a process of its own.
  const bool isPlugin = watcherProcess.starts_with("panel-");
  return isPlugin || std::ranges::find(others, watcherProcess) != others.end() ? SymbolSource::Folder
                                                                               : SymbolSource::Nowhere;
}

}  // namespace platform

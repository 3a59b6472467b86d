#pragma once

#include <algorithm>
#include <array>
#include <string_view>

namespace platform {

// The kind of panel that shows a status icon.
enum class TrayPlace { Nowhere, Bus, Screen };

// Whether a StatusNotifierItem host is registered on the session bus; Unknown while a request to the watcher
// is pending.
enum class BusHost { Unknown, Absent, Present };

// Returns where to show the icon: in a host on the bus, else in a tray of the X screen. If there is neither,
// or the host is not known yet, returns `current`, because that panel may return. Pure function.
[[nodiscard]] constexpr TrayPlace placeFor(TrayPlace current, BusHost host, bool trayOnScreen) {
  if (host == BusHost::Present) return TrayPlace::Bus;
  if (host == BusHost::Absent && trayOnScreen) return TrayPlace::Screen;
  return current;
}

// Where a panel finds symbolic icons that it paints in the colour of its text: in a folder that the item
// names, or only in the icon themes of the system. Nowhere: it does not recolour them.
enum class SymbolSource { Nowhere, Themes, Folder };

// Returns the source for the panel whose watcher is the process of this name. Pure function.
[[nodiscard]] constexpr SymbolSource symbolSourceOf(std::string_view watcherProcess) {
  // Plasma paints an icon from an item's folder in the colour of the programs, not of the panel.
  constexpr std::array<std::string_view, 3> plasma{"kded5", "kded6", "plasmashell"};
  // The kernel keeps 15 bytes of a name, here of MATE's notification-area-applet.
  constexpr std::array<std::string_view, 5> plain{"lxqt-panel", "mate-panel", "notification-ar", "swaybar",
                                                  "waybar"};
  if (std::ranges::find(plasma, watcherProcess) != plasma.end()) return SymbolSource::Themes;
  return std::ranges::find(plain, watcherProcess) != plain.end() ? SymbolSource::Nowhere
                                                                 : SymbolSource::Folder;
}

}  // namespace platform

#pragma once

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

}  // namespace platform

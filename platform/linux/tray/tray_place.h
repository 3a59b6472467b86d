#pragma once

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

}  // namespace platform

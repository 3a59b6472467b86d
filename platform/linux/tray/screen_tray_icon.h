#pragma once

#include <functional>

#include <QRect>
#include <QSystemTrayIcon>

#include "platform/linux/tray/status_content.h"

namespace platform {

// A status icon in an X system tray. Qt docks it, again after each restart of the tray. Main thread only.
//
// Construct it only while the bus has no host: Qt looks for a host once per process, when the first icon is
// constructed, and would register there.
class ScreenTrayIcon {
 public:
  // Calls `clicked` at each click of the left or right button. Qt's own context menu would open under the
  // pointer, where a second click chooses its first item.
  explicit ScreenTrayIcon(std::function<void()> clicked);

  void show(const StatusContent& content);
  // Returns an empty rectangle if the tray does not report the icon's position.
  [[nodiscard]] QRect geometry() const { return icon_.geometry(); }

 private:
  QSystemTrayIcon icon_;
};

}  // namespace platform

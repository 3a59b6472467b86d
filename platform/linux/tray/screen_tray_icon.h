#pragma once

#include <functional>

#include <QRect>
#include <QSystemTrayIcon>

#include "platform/linux/tray/status_content.h"

namespace platform {

// A status icon in a tray of the X screen, which the toolkit docks there, again after each restart of the
// tray. The right button opens the menu by itself. Main thread.
//
// Qt looks for a host on the bus once per process, when the first icon is constructed, and would register
// there: construct this only while the bus has no host.
class ScreenTrayIcon {
 public:
  // `clicked` is called at a click of the left button.
  explicit ScreenTrayIcon(std::function<void()> clicked);

  void show(const StatusContent& content);
  // Empty if the tray does not report the icon's position.
  [[nodiscard]] QRect geometry() const { return icon_.geometry(); }

 private:
  QSystemTrayIcon icon_;
};

}  // namespace platform

#pragma once

#include <functional>

#include <QRect>
#include <QSystemTrayIcon>

#include "platform/linux/tray/status_content.h"

namespace platform {

// A status icon in a tray of the X screen, which the toolkit docks there, again after each restart of the
// tray. The right button opens the menu by itself. Main thread.
//
// The toolkit looks for a host on the bus once per process, when its first icon is made, and would dock
// there: to be made only while the bus has none.
class ScreenTrayIcon {
 public:
  // `clicked` is called at a click of the left button.
  explicit ScreenTrayIcon(std::function<void()> clicked);

  void show(const StatusContent& content);
  // Empty where the tray doesn't tell.
  [[nodiscard]] QRect geometry() const { return icon_.geometry(); }

 private:
  QSystemTrayIcon icon_;
};

}  // namespace platform

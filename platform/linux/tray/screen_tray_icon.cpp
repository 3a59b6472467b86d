#include "platform/linux/tray/screen_tray_icon.h"

#include <utility>

#include "platform/linux/images/image_impl.h"
#include "platform/linux/tray/panel_icon.h"

namespace platform {

ScreenTrayIcon::ScreenTrayIcon(std::function<void()> clicked) {
  QObject::connect(&icon_, &QSystemTrayIcon::activated, &icon_,
                   [clicked = std::move(clicked)](QSystemTrayIcon::ActivationReason reason) {
                     if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::Context) clicked();
                   });
}

void ScreenTrayIcon::show(const StatusContent& content) {
  icon_.setToolTip(content.text);
  icon_.setIcon(content.hasIcon() ? panelIcon(content.image->impl().pixmaps()) : QIcon());
  icon_.setVisible(content.hasIcon());
}

}  // namespace platform

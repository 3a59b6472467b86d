#include "platform/distributed_notification_center.h"

#include "platform/linux/desktop/settings_portal.h"

namespace platform {

DistributedNotificationCenter& DistributedNotificationCenter::defaultCenter() {
  static DistributedNotificationCenter& center = *new DistributedNotificationCenter;
  return center;
}

void DistributedNotificationCenter::addObserver(std::string_view name, std::function<void()> observer) {
  if (name != "AppleInterfaceThemeChangedNotification") return;
  SettingsPortal::shared().onChange(std::move(observer));
}

}  // namespace platform

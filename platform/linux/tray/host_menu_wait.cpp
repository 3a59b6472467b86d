#include "platform/linux/tray/host_menu_wait.h"

#include <utility>

namespace platform {

HostMenuWait::HostMenuWait(std::function<void()> openMenu) : openMenu_(std::move(openMenu)) {
  timer_.setSingleShot(true);
  connect(&timer_, &QTimer::timeout, this, &HostMenuWait::giveUp);
}

bool HostMenuWait::activate(const QString& host) {
  const bool opensHere = host == hostWithoutMenus_;
  askedHost_ = host;
  timer_.start(opensHere ? std::chrono::milliseconds(0) : hostMenuPatience);
  return opensHere;
}

void HostMenuWait::giveUp() {
  hostWithoutMenus_ = askedHost_;
  openMenu_();
}

}  // namespace platform

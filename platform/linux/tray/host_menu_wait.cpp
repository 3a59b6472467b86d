#include "platform/linux/tray/host_menu_wait.h"

#include <utility>

namespace platform {
namespace {

bool isNear(const QElapsedTimer& since) {
  return since.isValid() && !since.hasExpired(hostMenuNearness.count());
}

}  // namespace

HostMenuWait::HostMenuWait(std::function<void()> openMenu) : openMenu_(std::move(openMenu)) {
  timer_.setSingleShot(true);
  connect(&timer_, &QTimer::timeout, this, &HostMenuWait::giveUp);
}

bool HostMenuWait::activate(const QString& host) {
  const bool opensHere = host == hostWithoutMenus_;
  if (!opensHere && isNear(menuCall_)) return false;
  askedHost_ = host;
  timer_.start(opensHere ? std::chrono::milliseconds(0) : hostMenuPatience);
  return opensHere;
}

// A host that calls the menu after all is slow, not without menus.
void HostMenuWait::noteMenuCall() {
  timer_.stop();
  menuCall_.start();
  if (isNear(gaveUp_)) hostWithoutMenus_.clear();
}

void HostMenuWait::giveUp() {
  gaveUp_.start();
  hostWithoutMenus_ = askedHost_;
  openMenu_();
}

}  // namespace platform

#pragma once

#include <chrono>
#include <functional>

#include <QObject>
#include <QString>
#include <QTimer>

namespace platform {

// How long a host has for its first call to the menu after Activate has failed.
inline constexpr std::chrono::milliseconds hostMenuPatience{500};

// Decides who opens the menu when a host calls Activate. Most hosts open the item's menu themselves when the
// call fails with UnknownMethod; some, like those of MATE and LXQt, do nothing then. Such a host is known by
// not having called the menu for a while; from then on its menu opens without delay. Main thread.
class HostMenuWait : public QObject {
  Q_OBJECT
 public:
  // Calls `openMenu` from the run loop.
  explicit HostMenuWait(std::function<void()> openMenu);

  // A host, by its unique bus name, calls Activate. Returns whether the call succeeds.
  [[nodiscard]] bool activate(const QString& host);
  // A host calls the menu.
  void noteMenuCall() { timer_.stop(); }

 private:
  void giveUp();

  std::function<void()> openMenu_;
  QTimer timer_;
  QString askedHost_;
  QString hostWithoutMenus_;
};

}  // namespace platform

#pragma once

#include <functional>
#include <memory>

#include <QAbstractNativeEventFilter>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QObject>

#include "platform/linux/tray/tray_place.h"

namespace platform {

// Watches what the desktop has for status icons: a StatusNotifierItem host on the session bus, and a tray by
// the freedesktop System Tray Protocol on the X screen. Asks the bus without waiting. Main thread.
class TrayHostWatch : public QObject, private QAbstractNativeEventFilter {
  Q_OBJECT
 public:
  // Calls `changed` from the run loop when something may have changed.
  explicit TrayHostWatch(std::function<void()> changed);
  ~TrayHostWatch() override;

  [[nodiscard]] BusHost busHost() const { return busHost_; }
  [[nodiscard]] SymbolSource symbolSource() const { return symbolSource_; }
  // Another number each time that the watcher's bus name gets an owner: a watcher that was started again
  // knows no items, and one that lives on a connection of its process may come back under the same unique
  // name.
  [[nodiscard]] int watcherNumber() const { return watcherNumber_; }
  // One round trip to the X server.
  [[nodiscard]] bool trayOnScreen() const;

 private Q_SLOTS:
  void askWatcher();

 private:
  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
  void watchScreen();
  void takeAnswer();

  std::function<void()> changed_;
  QDBusServiceWatcher watcherName_;
  QDBusPendingCall processQuestion_;
  std::unique_ptr<QDBusPendingCallWatcher> question_;
  SymbolSource symbolSource_ = SymbolSource::Nowhere;
  BusHost busHost_ = BusHost::Unknown;
  int watcherNumber_ = 1;
  quint32 managerMessage_ = 0;
  quint32 traySelection_ = 0;
};

}  // namespace platform

#pragma once

#include <xcb/xcb.h>

#include <functional>
#include <memory>

#include <QAbstractNativeEventFilter>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QObject>

#include "platform/linux/tray/tray_place.h"

namespace platform {

// Detects where the desktop shows status icons: in a StatusNotifierItem host on the session bus, or in a tray
// on the X screen (freedesktop.org System Tray Protocol). Queries the bus asynchronously. Main thread only.
class TrayHostWatch : public QObject, private QAbstractNativeEventFilter {
  Q_OBJECT
 public:
  // Calls `changed` from the run loop when the result may have changed.
  explicit TrayHostWatch(std::function<void()> changed);
  ~TrayHostWatch() override;

  [[nodiscard]] BusHost busHost() const { return busHost_; }
  [[nodiscard]] SymbolSource symbolSource() const { return symbolSource_; }
  // Returns a number that changes each time the watcher's bus name gets an owner. A restarted watcher knows
  // no items, and its unique name may be the same if it shares the connection of a process that kept running.
  [[nodiscard]] int watcherNumber() const { return watcherNumber_; }
  // Makes one round trip to the X server. `changed` is called when the tray ends.
  [[nodiscard]] bool trayOnScreen();

 private Q_SLOTS:
  void askWatcher();

 private:
  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
  [[nodiscard]] bool isTrayEvent(const xcb_generic_event_t& event) const;
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
  quint32 trayWindow_ = 0;
};

}  // namespace platform

#pragma once

#include <functional>

#include <QAbstractNativeEventFilter>
#include <QDBusServiceWatcher>
#include <QObject>

namespace platform {

// Tells when the desktop has room for status icons: a StatusNotifierItem host on the session bus, or a tray
// by the freedesktop System Tray Protocol on the X screen. Asks without waiting. Main thread.
//
// The toolkit looks for a host once per process, when its first icon is made, so no icon may be made before
// this says so.
class TrayHostWatch : public QObject, private QAbstractNativeEventFilter {
  Q_OBJECT
 public:
  // Calls `found` from the run loop, once.
  explicit TrayHostWatch(std::function<void()> found);
  ~TrayHostWatch() override;

 private Q_SLOTS:
  void askWatcher();

 private:
  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
  void askScreen();
  void report();

  std::function<void()> found_;
  QDBusServiceWatcher watcherName_;
  quint32 managerMessage_ = 0;
  quint32 traySelection_ = 0;
};

}  // namespace platform

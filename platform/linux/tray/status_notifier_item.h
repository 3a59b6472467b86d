#pragma once

#include <functional>
#include <memory>
#include <optional>

#include <QDBusPendingCallWatcher>
#include <QObject>
#include <QPoint>
#include <QString>
#include <QStringList>
#include <QTimer>

#include "platform/linux/tray/bus_types.h"
#include "platform/linux/tray/exported_menu.h"
#include "platform/linux/tray/host_menu_wait.h"
#include "platform/linux/tray/status_content.h"

namespace platform {

// A status icon on the session bus (org.kde.StatusNotifierItem), drawn by the host that is registered with
// org.kde.StatusNotifierWatcher. No call waits for the bus. Main thread only.
class StatusNotifierItem : public QObject {
  Q_OBJECT
 public:
  // Calls `openMenu` from the run loop when a host that shows no menus requests the menu, with the position
  // in pixels of the X screen, or nullopt for the pointer's.
  explicit StatusNotifierItem(std::function<void(std::optional<QPoint> pixel)> openMenu);
  ~StatusNotifierItem() override;

  // Shows `content`. Registers with the watcher, once for each `watcherNumber` (TrayHostWatch), and
  // unregisters while there is no icon.
  void show(const StatusContent& content, int watcherNumber);

 private:
  [[nodiscard]] BusInterface interface();
  [[nodiscard]] QVariantMap properties();
  [[nodiscard]] QVariant pixels();
  [[nodiscard]] QDBusMessage activate(const QDBusMessage& call);
  [[nodiscard]] QDBusMessage contextMenu(const QDBusMessage& call);
  void signalChange(const QStringList& names);
  void reloadIcon();
  [[nodiscard]] QString symbolFolder() const;
  void requestName();
  void takeNameAnswer();
  void registerWithWatcher();
  void withdraw();

  std::function<void(std::optional<QPoint>)> openMenu_;
  StatusContent content_;
  QList<IconPixels> pixels_;  // of the content's image; empty until a panel asks
  int watcherNumber_ = 0;
  int registeredWith_ = 0;
  int nameNumber_ = 0;
  bool hasName_ = false;
  std::unique_ptr<QDBusPendingCallWatcher> nameRequest_;
  QTimer iconReload_;
  bool spelledOtherwise_ = false;
  HostMenuWait hostMenuWait_;
  ExportedMenu menu_;
  BusObject object_;
};

}  // namespace platform

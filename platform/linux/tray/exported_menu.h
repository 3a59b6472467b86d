#pragma once

#include <functional>

#include <QList>
#include <QMenu>
#include <QObject>
#include <QPointer>

#include "platform/linux/tray/bus_object.h"
#include "platform/linux/tray/menu_layout.h"

namespace platform {

// A menu on the session bus (com.canonical.dbusmenu), which tray hosts display. Sends changes at once, so
// that hosts show them even while the main thread is busy. Replies to a click first, then triggers the item
// from the run loop. Main thread only.
class ExportedMenu : public QObject {
  Q_OBJECT
 public:
  // Calls `called` at each call of a host, before the answer.
  ExportedMenu(const QString& path, std::function<void()> called);

  // Exports this menu from now on; nullptr exports an empty one. The caller keeps ownership.
  void show(QMenu* menu);

 private:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void refresh();
  [[nodiscard]] BusInterface interface();

  [[nodiscard]] QDBusMessage getLayout(const QDBusMessage& call) const;
  [[nodiscard]] QDBusMessage getGroupProperties(const QDBusMessage& call) const;
  [[nodiscard]] QDBusMessage getProperty(const QDBusMessage& call) const;
  [[nodiscard]] QDBusMessage takeEvent(const QDBusMessage& call);
  [[nodiscard]] QDBusMessage takeEvents(const QDBusMessage& call);
  [[nodiscard]] QDBusMessage aboutToShow(const QDBusMessage& call) const;
  [[nodiscard]] QDBusMessage aboutToShowGroup(const QDBusMessage& call) const;
  void serve(int id, const QString& event);

  std::function<void()> called_;
  QPointer<QMenu> menu_;
  QList<MenuLine> lines_;
  uint revision_ = 1;
  BusObject object_;
};

}  // namespace platform

#pragma once

#include <functional>

#include <QList>
#include <QMenu>
#include <QObject>
#include <QPointer>

#include "platform/linux/tray/bus_object.h"
#include "platform/linux/tray/menu_layout.h"

namespace platform {

// A menu on the session bus (com.canonical.dbusmenu), from which tray hosts make one of their own. Changes of
// the menu are sent as they happen, so that hosts show them also while the main thread is at work. A click is
// answered first and chooses the item from the run loop. Main thread.
class ExportedMenu : public QObject {
  Q_OBJECT
 public:
  // Calls `called` at each call of a host, before the answer.
  ExportedMenu(const QString& path, std::function<void()> called);

  // Shows this menu from here on; nullptr shows an empty one. The menu stays the caller's.
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

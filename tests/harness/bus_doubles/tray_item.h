#pragma once

#include <functional>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariantList>
#include <QVariantMap>

#include "tests/harness/bus_doubles/menu_layout.h"
#include "tests/harness/bus_doubles/status_notifier_watcher.h"

// A host's view of one tray item and its menu. Every call goes out without waiting, so that an item which is
// busy, or which itself waits for this host, stops nothing; a failure is answered with "error ...".
//
// While it lives, the item's and the menu's signals are told to the test as events: the signal's name, and
// the status after NewStatus.
class TrayItem : public QObject {
  Q_OBJECT

 public:
  TrayItem(QDBusConnection bus, ItemAddress address);

  void fetchProperties(const std::function<void(const QVariantMap&)>& use);
  void fetchMenu(const std::function<void(const QList<MenuItem>&)>& use);
  [[nodiscard]] const QList<MenuItem>& knownMenu() const { return knownMenu_; }  // as fetched last

  // Calls that act on the item, or on its menu once that was fetched; when the reply comes, "NAME" or "failed
  // NAME ..." is told as an event.
  void callItem(const QString& method, const QVariantList& arguments, const QString& name);
  void callMenu(const QString& method, const QVariantList& arguments, const QString& name);

 private slots:
  void tellSignal(const QDBusMessage& signal);

 private:
  using UseReply = std::function<void(const QDBusMessage&)>;

  void call(const QDBusMessage& message, const UseReply& use);
  void callAndTell(const QDBusMessage& message, const QString& name);
  void fetchLayout(const std::function<void(const QList<MenuItem>&)>& use);
  void listenToMenu();

  QDBusConnection bus_;
  ItemAddress address_;
  QString menuPath_;  // empty before the first fetch
  QList<MenuItem> knownMenu_;
};

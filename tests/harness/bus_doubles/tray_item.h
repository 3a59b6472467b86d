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

// A host's view of one tray item and its menu. All calls are asynchronous, so that an item that is busy or
// that itself waits for this host blocks nothing. A failed call is answered with "error ...".
//
// Reports signals of the item and of its menu to the test as events: the signal's name, followed by the
// status for NewStatus.
class TrayItem : public QObject {
  Q_OBJECT

 public:
  TrayItem(QDBusConnection bus, ItemAddress address);

  void fetchProperties(const std::function<void(const QVariantMap&)>& use);
  void fetchMenu(const std::function<void(const QList<MenuItem>&)>& use);
  [[nodiscard]] const QList<MenuItem>& knownMenu() const { return knownMenu_; }  // as of the last fetch

  // Call methods of the item, or of its menu once that was fetched. The reply is reported as the event "NAME"
  // or "failed NAME ...".
  void callItem(const QString& method, const QVariantList& arguments, const QString& name);
  void callMenu(const QString& method, const QVariantList& arguments, const QString& name);

 private slots:
  void printSignal(const QDBusMessage& signal);

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

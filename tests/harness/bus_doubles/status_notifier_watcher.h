#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusServiceWatcher>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

// The bus address of a tray item.
struct ItemAddress {
  QString service = {};
  QString path = {};

  bool operator==(const ItemAddress&) const = default;
};

// Fakes org.kde.StatusNotifierWatcher, the registry of tray items, including the host of this program.
//
// All members are exported, because Qt's tray icon reads only properties that introspection lists.
class StatusNotifierWatcher : public QObject, protected QDBusContext {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
  Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ itemNames)
  Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hostRegistered)
  Q_PROPERTY(int ProtocolVersion READ protocolVersion CONSTANT)

 public:
  explicit StatusNotifierWatcher(QDBusConnection bus);

  // Returns false if another watcher owns the bus name.
  [[nodiscard]] bool publish();

  [[nodiscard]] const QList<ItemAddress>& items() const { return items_; }
  [[nodiscard]] QStringList itemNames() const;
  [[nodiscard]] bool hostRegistered() const { return hostRegistered_; }
  [[nodiscard]] int protocolVersion() const { return 0; }
  void setHostRegistered(bool registered);

 public slots:
  void RegisterStatusNotifierItem(const QString& serviceOrPath);
  void RegisterStatusNotifierHost(const QString& service);

 signals:
  void StatusNotifierItemRegistered(const QString& item);
  void StatusNotifierItemUnregistered(const QString& item);
  void StatusNotifierHostRegistered();
  void StatusNotifierHostUnregistered();

 private:
  void removeItemsOf(const QString& service);

  QDBusConnection bus_;
  QDBusServiceWatcher owners_;
  QList<ItemAddress> items_;
  bool hostRegistered_ = true;
};

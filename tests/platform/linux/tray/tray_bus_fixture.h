#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>

#include "platform/menu.h"
#include "platform/status_item.h"
#include "tests/harness/bus_doubles/status_notifier_watcher.h"
#include "tests/harness/desktop/event_loop.h"

inline const QString itemInterface = "org.kde.StatusNotifierItem";
inline const QString menuInterface = "com.canonical.dbusmenu";
inline const QString propertiesInterface = "org.freedesktop.DBus.Properties";

// A connection to the session bus that records the signals of an item and its menu.
class BusClient : public QObject {
  Q_OBJECT
 public:
  explicit BusClient(const QString& name);
  ~BusClient() override;

  [[nodiscard]] QDBusConnection& bus() { return bus_; }
  // Processes this process's events until the reply has arrived.
  [[nodiscard]] QDBusMessage call(const QString& service, const QString& path, const QString& interface,
                                  const QString& method, const QVariantList& arguments = {});
  // Removes and returns the first signal of this name.
  [[nodiscard]] std::optional<QDBusMessage> takeSignal(const QString& name);
  [[nodiscard]] QStringList signalNames() const;
  void forgetSignals() { signals_.clear(); }

 private Q_SLOTS:
  void note(const QDBusMessage& signal) { signals_.append(signal); }

 private:
  QString name_;
  QDBusConnection bus_;
  QList<QDBusMessage> signals_;
};

// A status item in this process, with a watcher and host on another connection.
class TrayBusTest : public testing::Test {
 protected:
  void startWatcher();
  void stopWatcher();
  // Creates the item with an image and a menu.
  void makeItem();
  void makeRegisteredItem();
  [[nodiscard]] bool waitForItems(qsizetype number);

  [[nodiscard]] QDBusMessage callItem(const QString& interface, const QString& method,
                                      const QVariantList& arguments = {});
  [[nodiscard]] QDBusMessage callMenu(const QString& method, const QVariantList& arguments = {},
                                      const QString& interface = menuInterface);
  [[nodiscard]] QVariantMap properties();
  [[nodiscard]] std::optional<QDBusMessage> waitForSignal(const QString& name);
  // Returns whether the item still replies.
  [[nodiscard]] bool isAlive();

  BusClient host_{"host"};
  std::unique_ptr<StatusNotifierWatcher> watcher_;
  std::unique_ptr<platform::StatusItem> item_;
  QStringList chosen_;  // titles of the items chosen so far
};

#pragma once

#include <map>

#include <QDBusConnection>
#include <QList>
#include <QString>

#include "tests/harness/bus_doubles/status_notifier_watcher.h"
#include "tests/harness/bus_doubles/tray_item.h"

// Executes the test's commands on the most recently registered item.
class TrayHost {
 public:
  explicit TrayHost(const QDBusConnection& bus);

  [[nodiscard]] bool publish() { return watcher_.publish(); }
  void handle(const QString& line);

 private:
  void handleForItem(const QString& word, const QString& rest);
  void followNewestItem();
  void printItems();
  void printProperties();
  void printMenu();
  void printIconSizes();
  void saveIcon(const QString& file, const QString& size);
  void saveMenuIcon(const QString& label, const QString& file);
  void showMenu();
  void click(const QString& label);
  void clickIn(const QList<MenuItem>& items, const QString& label);
  void callAt(const QString& method, const QString& place);

  QDBusConnection bus_;
  StatusNotifierWatcher watcher_;
  std::map<QString, TrayItem> seen_;  // kept after an item is gone, because replies may be pending
  TrayItem* item_ = nullptr;
};

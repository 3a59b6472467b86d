#include "tests/harness/bus_doubles/status_notifier_watcher.h"

#include <utility>

#include <QDBusMessage>

#include "tests/harness/bus_doubles/command_lines.h"

StatusNotifierWatcher::StatusNotifierWatcher(QDBusConnection bus) : bus_(std::move(bus)) {
  owners_.setConnection(bus_);
  owners_.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
  connect(&owners_, &QDBusServiceWatcher::serviceUnregistered, this, &StatusNotifierWatcher::removeItemsOf);
}

bool StatusNotifierWatcher::publish() {
  return bus_.registerObject("/StatusNotifierWatcher", this, QDBusConnection::ExportAllContents) &&
         bus_.registerService("org.kde.StatusNotifierWatcher");
}

QStringList StatusNotifierWatcher::itemNames() const {
  QStringList names;
  for (const ItemAddress& item : items_) names.append(item.service + item.path);
  return names;
}

void StatusNotifierWatcher::setHostRegistered(bool registered) {
  if (registered == hostRegistered_) return;
  hostRegistered_ = registered;
  if (registered) {
    emit StatusNotifierHostRegistered();
  } else {
    emit StatusNotifierHostUnregistered();
  }
}

void StatusNotifierWatcher::RegisterStatusNotifierItem(const QString& serviceOrPath) {
  const ItemAddress item = serviceOrPath.startsWith('/') ? ItemAddress{message().service(), serviceOrPath}
                                                         : ItemAddress{serviceOrPath, "/StatusNotifierItem"};
  if (items_.contains(item)) return;
  items_.append(item);
  owners_.addWatchedService(item.service);
  say("registered " + item.service + " " + item.path);
  emit StatusNotifierItemRegistered(item.service + item.path);
}

void StatusNotifierWatcher::RegisterStatusNotifierHost(const QString&) {
  setHostRegistered(true);
}

void StatusNotifierWatcher::removeItemsOf(const QString& service) {
  owners_.removeWatchedService(service);
  for (qsizetype i = items_.size() - 1; i >= 0; --i) {
    if (items_[i].service != service) continue;
    const ItemAddress item = items_.takeAt(i);
    say("unregistered " + item.service + " " + item.path);
    emit StatusNotifierItemUnregistered(item.service + item.path);
  }
}

#include "tests/harness/bus_doubles/notification_service.h"

#include <utility>

#include "tests/harness/bus_doubles/command_lines.h"

namespace {

constexpr uint closedByCall = 3;

}  // namespace

NotificationService::NotificationService(QDBusConnection bus) : bus_(std::move(bus)) {}

bool NotificationService::publish(bool withName) {
  return bus_.registerObject("/org/freedesktop/Notifications", this, QDBusConnection::ExportAllContents) &&
         (!withName || bus_.registerService("org.freedesktop.Notifications"));
}

uint NotificationService::Notify(const QString& application, uint replaced, const QString& icon,
                                 const QString& summary, const QString& body, const QStringList& actions,
                                 const QVariantMap& hints, int timeout) {
  newest_ = replaced != 0 ? replaced : newest_ + 1;
  say(QStringList{"notify " + QString::number(newest_), application, icon, summary, body, actions.join(','),
                  hints.value("desktop-entry").toString(), QString::number(timeout)}
          .join('|'));
  setDelayedReply(silent_);
  return newest_;
}

void NotificationService::CloseNotification(uint id) {
  say("close " + QString::number(id));
  emit NotificationClosed(id, closedByCall);
}

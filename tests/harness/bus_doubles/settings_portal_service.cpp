#include "tests/harness/bus_doubles/settings_portal_service.h"

#include <utility>

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QTimer>

#include "tests/harness/bus_doubles/command_lines.h"

namespace {

const char* const kGroup = "org.freedesktop.appearance";
const char* const kKey = "color-scheme";

}  // namespace

SettingsPortalService::SettingsPortalService(QDBusConnection bus, QVariant value)
    : bus_(std::move(bus)), value_(std::move(value)) {
  qRegisterMetaType<QDBusVariant>();
  qDBusRegisterMetaType<SettingsByNamespace>();
}

bool SettingsPortalService::publish() {
  return bus_.registerObject("/org/freedesktop/portal/desktop", this, QDBusConnection::ExportAllContents) &&
         bus_.registerService("org.freedesktop.portal.Desktop");
}

void SettingsPortalService::signalChange() {
  emit SettingChanged(kGroup, kKey, QDBusVariant(value_));
}

void SettingsPortalService::signalUnrelatedChange() {
  emit SettingChanged("org.gnome.desktop.interface", "cursor-size", QDBusVariant(24));
  emit SettingChanged(kGroup, "contrast", QDBusVariant(1U));
}

QDBusVariant SettingsPortalService::Read(const QString& group, const QString& key) {
  say("read " + group + " " + key);
  setDelayedReply(true);
  // Read the value only when the reply is due, so that it reflects commands received during the delay.
  QTimer::singleShot(delay_, this,
                     [this, request = message(), group, key] { bus_.send(answerTo(request, group, key)); });
  return {};
}

QDBusMessage SettingsPortalService::answerTo(const QDBusMessage& request, const QString& group,
                                             const QString& key) const {
  if (group != kGroup || key != kKey || !value_.isValid()) {
    return request.createErrorReply("org.freedesktop.portal.Error.NotFound", "Requested setting not found");
  }
  // Read() returns a variant inside a variant, for compatibility with the portal's first version.
  return request.createReply(QVariant::fromValue(QDBusVariant(QVariant::fromValue(QDBusVariant(value_)))));
}

SettingsByNamespace SettingsPortalService::ReadAll(const QStringList& groups) {
  const bool wanted = groups.isEmpty() || groups.contains("") || groups.contains(kGroup);
  if (!wanted || !value_.isValid()) return {};
  return {{kGroup, {{kKey, value_}}}};
}

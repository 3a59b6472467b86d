#include "platform/linux/desktop/settings_portal.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>

#include "platform/linux/desktop/appearance.h"

namespace platform {
namespace {

constexpr int portalTimeoutMs = 500;
constexpr uint preferDark = 1;

constexpr QLatin1StringView service("org.freedesktop.portal.Desktop");
constexpr QLatin1StringView portalPath("/org/freedesktop/portal/desktop");
constexpr QLatin1StringView portalInterface("org.freedesktop.portal.Settings");
constexpr QLatin1StringView appearance("org.freedesktop.appearance");
constexpr QLatin1StringView colorScheme("color-scheme");

bool isTimeOut(const QDBusMessage& answer) {
  const auto type = QDBusError(answer).type();
  return type == QDBusError::NoReply || type == QDBusError::Timeout || type == QDBusError::TimedOut;
}

QDBusMessage question() {
  return QDBusMessage::createMethodCall(service, portalPath, portalInterface, QStringLiteral("Read"))
         << appearance << colorScheme;
}

}  // namespace

bool isDarkColorScheme(const QVariant& value) {
  QVariant inner = value;
  while (inner.userType() == qMetaTypeId<QDBusVariant>())
    inner = qvariant_cast<QDBusVariant>(inner).variant();
  return inner.userType() == QMetaType::UInt && inner.toUInt() == preferDark;
}

SettingsPortal& SettingsPortal::shared() {
  static SettingsPortal& portal = *new SettingsPortal;
  return portal;
}

SettingsPortal::SettingsPortal()
    : registrations_(service, QDBusConnection::sessionBus(), QDBusServiceWatcher::WatchForRegistration) {
  QDBusConnection::sessionBus().connect(service, portalPath, portalInterface,
                                        QStringLiteral("SettingChanged"), this,
                                        SLOT(settingChanged(QDBusMessage)));
  // The portal signals only changes. Read the value whenever it registers on the bus: after the agent, or
  // again after a restart.
  connect(&registrations_, &QDBusServiceWatcher::serviceRegistered, this, [this] { readAsynchronously(); });
}

bool SettingsPortal::readPrefersDark() {
  const QDBusMessage answer = QDBusConnection::sessionBus().call(question(), QDBus::Block, portalTimeoutMs);
  // A portal that this call starts may answer after the timeout. Its late answer counts as a change.
  if (isTimeOut(answer)) readAsynchronously();
  const bool answered = answer.type() == QDBusMessage::ReplyMessage && !answer.arguments().isEmpty();
  setDark(answered && isDarkColorScheme(answer.arguments().constFirst()));
  return dark_;
}

void SettingsPortal::settingChanged(const QDBusMessage& message) {
  const QVariantList arguments = message.arguments();
  if (arguments.size() != 3 || arguments[0].toString() != appearance ||
      arguments[1].toString() != colorScheme)
    return;
  takeChange(isDarkColorScheme(arguments[2]));
}

void SettingsPortal::readAsynchronously() {
  auto* answer = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question()), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
    answer->deleteLater();
    const QDBusMessage message = answer->reply();
    if (message.type() == QDBusMessage::ReplyMessage && !message.arguments().isEmpty()) {
      takeChange(isDarkColorScheme(message.arguments().constFirst()));
    }
  });
}

void SettingsPortal::takeChange(bool dark) {
  if (dark == dark_) return;
  setDark(dark);
  for (const auto& observer : observers_) observer();
}

void SettingsPortal::setDark(bool dark) {
  dark_ = dark;
  applyAppearance(dark);
}

}  // namespace platform

#pragma once

#include <chrono>

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusVariant>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>

using SettingsByNamespace = QMap<QString, QVariantMap>;  // a{sa{sv}}
Q_DECLARE_METATYPE(SettingsByNamespace)

// Fakes org.freedesktop.portal.Settings with one setting, the color scheme. Its value may be of any type or
// absent.
class SettingsPortalService : public QObject, protected QDBusContext {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")
  Q_PROPERTY(uint version READ version CONSTANT)

 public:
  SettingsPortalService(QDBusConnection bus, QVariant value);

  // Returns false if another portal owns the bus name.
  [[nodiscard]] bool publish();

  [[nodiscard]] uint version() const { return 1; }
  void setValue(const QVariant& value) { value_ = value; }  // an invalid variant: absent
  void setDelay(std::chrono::milliseconds delay) { delay_ = delay; }
  void signalChange();
  void signalUnrelatedChange();

 public slots:
  QDBusVariant Read(const QString& group, const QString& key);
  SettingsByNamespace ReadAll(const QStringList& groups);

 signals:
  void SettingChanged(const QString& group, const QString& key, const QDBusVariant& value);

 private:
  [[nodiscard]] QDBusMessage answerTo(const QDBusMessage& request, const QString& group,
                                      const QString& key) const;

  QDBusConnection bus_;
  QVariant value_;
  std::chrono::milliseconds delay_{0};
};

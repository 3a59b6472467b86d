#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

// Fakes the notification server, org.freedesktop.Notifications. Draws nothing and closes no notification by
// itself.
class NotificationService : public QObject, protected QDBusContext {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

 public:
  explicit NotificationService(QDBusConnection bus);

  // Without the bus name it can only send signals. Returns false if another server owns the name.
  [[nodiscard]] bool publish(bool withName);

  void setCapabilities(const QStringList& capabilities) { capabilities_ = capabilities; }
  // Stops replying to Notify.
  void fallSilent() { silent_ = true; }

 public slots:
  QStringList GetCapabilities() { return capabilities_; }
  uint Notify(const QString& application, uint replaced, const QString& icon, const QString& summary,
              const QString& body, const QStringList& actions, const QVariantMap& hints, int timeout);
  void CloseNotification(uint id);

 signals:
  void ActionInvoked(uint id, const QString& action);
  void ActivationToken(uint id, const QString& token);
  void NotificationClosed(uint id, uint reason);

 private:
  QDBusConnection bus_;
  QStringList capabilities_ = {"actions", "body"};
  bool silent_ = false;
  uint newest_ = 0;
};

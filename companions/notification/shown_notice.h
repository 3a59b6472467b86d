#pragma once

#include <functional>

#include <QDBusConnection>
#include <QDBusError>
#include <QObject>
#include <QString>
#include <QTimer>

#include "companions/notification/notice.h"

namespace companions {

// A notice on the screen, shown by the desktop's org.freedesktop.Notifications server. Main thread only.
class ShownNotice : public QObject {
  Q_OBJECT

 public:
  enum class End {
    Accepted,  // the action button was pressed
    Declined,  // the close button was pressed, the notice was closed, or the timeout expired
    Failed     // there is no server, or it replied with an error
  };

  // Calls `ended` once, from the event loop.
  ShownNotice(const Notice& notice, std::function<void(End)> ended);

  // Sends the notice to the server without waiting for the reply.
  void show();
  // Closes the notice and reports Declined. Waits at most 1 s for a server that has not replied yet.
  void cancel();

  // Returns the activation token that the server sends with a pressed button: the value of
  // XDG_ACTIVATION_TOKEN for a program that opens a window. Empty if the server has sent none.
  [[nodiscard]] const QString& activationToken() const { return activationToken_; }
  [[nodiscard]] const QString& error() const { return error_; }

 private slots:
  void shown(uint id);
  void refused(const QDBusError& error);
  // Signals of the server, which are broadcast and may concern other notices.
  void ActionInvoked(uint id, const QString& action);
  void ActivationToken(uint id, const QString& token);
  void NotificationClosed(uint id, uint reason);

 private:
  void connectSignals();
  void notify(bool markup);
  void close();
  void fail(const QString& error);
  void end(End end);

  Notice notice_;
  std::function<void(End)> ended_;
  QDBusConnection bus_ = QDBusConnection::sessionBus();
  QTimer timeout_;
  bool asked_ = false;  // Notify was sent, and its reply is pending
  bool cancelled_ = false;
  uint id_ = 0;  // 0 until the server has replied with an id
  QString activationToken_;
  QString error_;
};

}  // namespace companions

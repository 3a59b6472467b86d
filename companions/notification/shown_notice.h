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
    Accepted,  // the action's button was pressed
    Declined,  // the other button was pressed, the notice was closed, or its time is over
    Failed     // there is no server, or it refuses
  };

  // `ended` is called once, from the event loop.
  ShownNotice(const Notice& notice, std::function<void(End)> ended);

  // Asks the server to show the notice, without waiting for it.
  void show();
  // Takes the notice off the screen and ends it as declined. Waits a second at most for a server that has not
  // answered yet.
  void cancel();

  // Empty unless the server has sent one: the permission to raise a window that the pressed button gives, for
  // the environment variable XDG_ACTIVATION_TOKEN of the program that opens it.
  [[nodiscard]] const QString& activationToken() const { return activationToken_; }
  [[nodiscard]] const QString& error() const { return error_; }

 private slots:
  void shown(uint id);
  void refused(const QDBusError& error);
  // Signals of the server, which sends them to every program.
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
  bool asked_ = false;  // Notify is sent and not answered yet
  bool cancelled_ = false;
  uint id_ = 0;  // 0 until the server has sent an id
  QString activationToken_;
  QString error_;
};

}  // namespace companions

#include "platform/linux/application/desktop_session.h"

#include <QEvent>
#include <QGuiApplication>
#include <QSessionManager>
#include <QSocketNotifier>

#include <X11/ICE/ICElib.h>

namespace platform {
namespace {

// File-scope state, because libICE passes only the connection to an I/O error handler. -1: none lost.
int lostConnection = -1;

void noteLostConnection(IceConn connection) {
  lostConnection = IceConnectionNumber(connection);
}

}  // namespace

DesktopSession::DesktopSession(std::function<void()> ended) : ended_(std::move(ended)) {
  // The default I/O error handler of libICE calls exit.
  IceSetIOErrorHandler(noteLostConnection);
  // The autostart entry starts the agent at the next login, so the session manager must not restart it.
  QObject::connect(qGuiApp, &QGuiApplication::saveStateRequest, this,
                   [](QSessionManager& session) { session.setRestartHint(QSessionManager::RestartNever); });
  qGuiApp->installEventFilter(this);
}

bool DesktopSession::eventFilter(QObject* receiver, QEvent* event) {
  // Qt handles QEvent::Quit by closing the windows, and gives up if one of them refuses to close.
  if (event->type() == QEvent::Quit && receiver == qGuiApp) {
    ended_();
    return true;
  }
  // The lost connection stays readable: an enabled notifier for it would fire in a busy loop.
  if (event->type() == QEvent::SockAct && lostConnection >= 0) {
    auto* notifier = qobject_cast<QSocketNotifier*>(receiver);
    if (notifier == nullptr || notifier->socket() != lostConnection) return false;
    notifier->setEnabled(false);
    lostConnection = -1;
    return true;
  }
  return false;
}

}  // namespace platform

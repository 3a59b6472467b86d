#include "platform/linux/application/desktop_session.h"

#include <QEvent>
#include <QGuiApplication>
#include <QSessionManager>
#include <QSocketNotifier>

#include <X11/ICE/ICElib.h>

namespace platform {
namespace {

// The library hands nothing but the connection to its handler.
int lostConnection = -1;

void noteLostConnection(IceConn connection) {
  lostConnection = IceConnectionNumber(connection);
}

}  // namespace

DesktopSession::DesktopSession(std::function<void()> ended) : ended_(std::move(ended)) {
  // The library's own handler ends the process.
  IceSetIOErrorHandler(noteLostConnection);
  // The autostart entry does that.
  QObject::connect(qGuiApp, &QGuiApplication::saveStateRequest, this,
                   [](QSessionManager& session) { session.setRestartHint(QSessionManager::RestartNever); });
  qGuiApp->installEventFilter(this);
}

bool DesktopSession::eventFilter(QObject* receiver, QEvent* event) {
  // The toolkit would first close the windows, and go no further than one that refuses.
  if (event->type() == QEvent::Quit && receiver == qGuiApp) {
    ended_();
    return true;
  }
  // Left alone, the toolkit would find the lost connection ready to read without end.
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

// notification_double [--nameless]: a fake notification server, controlled over standard input.

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>

#include "tests/harness/bus_doubles/command_lines.h"
#include "tests/harness/bus_doubles/notification_service.h"

namespace {

void handle(NotificationService& service, const QString& line) {
  const auto [word, rest] = splitCommand(line);
  const auto [number, text] = splitCommand(rest);
  const uint id = number.toUInt();
  if (word == "action") {
    emit service.ActionInvoked(id, text);
  } else if (word == "token") {
    emit service.ActivationToken(id, text);
  } else if (word == "closed") {
    emit service.NotificationClosed(id, text.toUInt());
  } else if (word == "capabilities") {
    service.setCapabilities(rest.split(' '));
  } else if (word == "silence") {
    service.fallSilent();
  } else {
    return say("error unknown command " + word);
  }
  // A round trip: its reply arrives after the bus has delivered the signal.
  static_cast<void>(QDBusConnection::sessionBus().interface()->serviceOwner("org.freedesktop.DBus"));
  say("ok");
}

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  NotificationService service(QDBusConnection::sessionBus());
  if (!service.publish(!QCoreApplication::arguments().contains("--nameless"))) {
    say("error no bus, or another server is on it");
    return 1;
  }
  const CommandLines commands([&](const QString& line) { handle(service, line); });
  say("ready");
  return QCoreApplication::exec();
}

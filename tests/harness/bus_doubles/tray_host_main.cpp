// tray_host_double: a desktop's tray, as far as tray items can tell. A process of its own, because the
// programs under test wait for its answers.

#include <QCoreApplication>
#include <QDBusConnection>

#include "tests/harness/bus_doubles/command_lines.h"
#include "tests/harness/bus_doubles/tray_host.h"

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  TrayHost host(QDBusConnection::sessionBus());
  if (!host.publish()) {
    say("error no bus, or another tray is on it");
    return 1;
  }
  const CommandLines commands([&](const QString& line) { host.handle(line); });
  say("ready");
  return QCoreApplication::exec();
}
